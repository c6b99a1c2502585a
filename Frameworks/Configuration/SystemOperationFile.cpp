#include "Frameworks/Configuration/SystemOperationFile.h"

#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr char Path[] = "/var/log/vorn/data/analyzer.op.xml";
constexpr char BackupPath[] = "/var/log/vorn/data/analyzer.op.backup.xml";
constexpr char SectionName[] = "SYSTEM_INFO";

// Factory defaults.
constexpr char DefaultDocument[] =
    R"(<?xml version="1.0" encoding="utf-8"?>
<ROOT_ANALYZER>
<SYSTEM_INFO>
<INFO_ITEM name="SerialNumber" type="string" value="123456789" description="analyzer serial number" unitOfMeasure="N/A" />
<INFO_ITEM name="TubingRunCycles" type="uint" value="0" description="tubing operation cycles" unitOfMeasure="cycles" />
<INFO_ITEM name="ColorimeterRunCycles" type="uint" value="0" description="measurement chamber operation cycles" unitOfMeasure="cycles" />
<INFO_ITEM name="ElectronicsRunHours" type="float" value="0" description="electronic hardware operation hours" unitOfMeasure="hours" />
<INFO_ITEM name="SampleConditioningRunCycles" type="uint" value="0" description="sample conditioning subsystem operation cycles" unitOfMeasure="cycles" />
<INFO_ITEM name="ReagentDeliveryRunCycles" type="uint" value="0" description="reagent delivery subsystem operation cycles" unitOfMeasure="cycles" />
<INFO_ITEM name="RemoteIndicatorRunHours" type="float" value="0" description="remote indicator operation hours" unitOfMeasure="hours" />
</SYSTEM_INFO>
</ROOT_ANALYZER>
)";

// Never freed if it is sound: at the end of the process a thread may still use it.
SystemOperationFile* instance = nullptr;
bool isValid = false;

bool IsSound(XmlDocument& document, const char* path) { return document.Load(path) && document.IsWellFormed(); }

}  // namespace

SystemOperationFile* SystemOperationFile::GetInstance() {
    if (instance == nullptr) {
        std::unique_ptr<SystemOperationFile> file(new SystemOperationFile);
        if (isValid) {
            instance = file.release();
        }
    }
    return instance;
}

SystemOperationFile::SystemOperationFile() {
    isValid = Load();
    isValid = isValid && EnterRoot();
    isValid = isValid && ReadSection();
}

SystemOperationFile::~SystemOperationFile() {
    SetDocument(nullptr);
    isValid = false;
}

// Writes nothing: the next save repairs a damaged file.
bool SystemOperationFile::Load() {
    m_ownedDocument = std::make_unique<XmlDocument>();
    SetDocument(m_ownedDocument.get());
    return IsSound(*m_ownedDocument, Path) || IsSound(*m_ownedDocument, BackupPath) ||
           m_ownedDocument->SetDocumentText(DefaultDocument);
}

bool SystemOperationFile::EnterRoot() {
    m_ownedDocument->ResetPosition();
    return m_ownedDocument->FindElement(AnalyzerRootName) && m_ownedDocument->IntoElement();
}

bool SystemOperationFile::ReadSection() {
    m_ownedDocument->ResetMainPosition();
    return GetXML(SectionName);
}

bool SystemOperationFile::Save() {
    if (!isValid || GetDocument() == nullptr) {
        return false;
    }
    GetDocument()->Save(Path);
    return GetDocument()->Save(BackupPath);
}

StdString SystemOperationFile::ReadItem(const StdString& name) const {
    const ItemInfoElement* item = GetItem(name);
    return item == nullptr ? StdString() : item->GetValue();
}

bool SystemOperationFile::WriteItem(const StdString& name, const StdString& text) {
    ItemInfoElement* item = GetItem(name);
    if (item == nullptr) {
        return false;
    }
    item->SetValue(text);
    return SetXML(SectionName, item);
}

bool SystemOperationFile::AddToUnsignedCounter(const StdString& name, std::uint32_t amount) {
    StdString text;
    text.Format("%u", ReadItem(name).ToUnsigned() + amount);
    return WriteItem(name, text);
}

bool SystemOperationFile::AddToFloatCounter(const StdString& name, double amount) {
    StdString text;
    text.FromDouble(ReadItem(name).ToDouble() + amount, "%.2f");
    return WriteItem(name, text);
}
