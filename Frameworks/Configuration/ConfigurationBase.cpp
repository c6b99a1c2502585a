#include "Frameworks/Configuration/ConfigurationBase.h"

#include "Frameworks/Configuration/MissingSetting.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr const char* ItemName = "INFO_ITEM";

// The whole report if a section can't be found, entered, left or added to: log readers know the failure by this one
// character.
constexpr const char* SectionFailedText = "\"";

struct ItemAttribute {
    const char* name;
    StdString (ItemInfoElement::*get)() const;
};

constexpr ItemAttribute WriteOrder[] = {
    {"name", &ItemInfoElement::GetName},
    {"type", &ItemInfoElement::GetType},
    {"value", &ItemInfoElement::GetValue},
    {"description", &ItemInfoElement::GetDescription},
    {"unitOfMeasure", &ItemInfoElement::GetUnitOfMeasure},
};

// Whether the tag has these attributes in this order, without entities.
bool ReadInOrder(std::string_view tag, ItemTexts& texts) {
    XmlAttributes attributes(tag, 1 + std::string_view(ItemName).size());
    return attributes.NextIs("name", texts.name) && attributes.NextIs("type", texts.type) &&
           attributes.NextIs("value", texts.value) && attributes.NextIs("description", texts.description) &&
           attributes.NextIs("unitOfMeasure", texts.unitOfMeasure) && tag.find('&') == std::string_view::npos;
}

// The current element, with its texts in that memory.
std::unique_ptr<ItemInfoElement> ReadItem(const XmlDocument& document, std::pmr::memory_resource* memory) {
    ItemTexts texts;
    if (ReadInOrder(document.GetStartTag(), texts)) {
        return std::make_unique<ItemInfoElement>(texts, memory);
    }
    const std::string name = document.GetAttribute("name");
    const std::string description = document.GetAttribute("description");
    const std::string type = document.GetAttribute("type");
    const std::string unitOfMeasure = document.GetAttribute("unitOfMeasure");
    const std::string value = document.GetAttribute("value");
    return std::make_unique<ItemInfoElement>(ItemTexts{name, description, type, unitOfMeasure, value}, memory);
}

}  // namespace

bool ConfigurationBase::GetXML(const StdString& sectionName) {
    return FindSection(sectionName) && ReadItems("ConfigurationBase::GetXML  Unable to add item");
}

bool ConfigurationBase::SetXML(const StdString& sectionName, ItemInfoElement* item) {
    return WriteItem("ConfigurationBase::SetXML  ", sectionName, item);
}

ItemInfoElement* ConfigurationBase::GetItem(const StdString& name) const {
    return m_items == nullptr ? nullptr : m_items->GetItem(name);
}

StdString ConfigurationBase::RequireValue(const StdString& key) const {
    const ItemInfoElement* item = GetItem(key);
    if (item == nullptr) {
        EndForMissingKey(Place(), key);
    }
    return item->GetValue();
}

StdString ConfigurationBase::GetValueOr(const StdString& key, const StdString& fallback) const {
    const ItemInfoElement* item = GetItem(key);
    return item == nullptr ? fallback : item->GetValue();
}

StdString ConfigurationBase::Place() const { return m_source + ": section " + m_sectionName; }

bool ConfigurationBase::FindSection(const StdString& sectionName) {
    m_sectionName = sectionName;
    if (GetDocument() == nullptr || !GetDocument()->FindElement(sectionName.CString())) {
        return false;
    }
    if (m_items == nullptr) {
        m_items = std::make_unique<ItemInfoContainer>();
    }
    return true;
}

bool ConfigurationBase::ReadItems(const char* refusedText) {
    m_items->Clear();
    m_items->SetPlace(Place());
    if (!GetDocument()->IntoElement()) {
        return false;
    }
    AddItems(*m_items, &ItemInfoContainer::AddItem, refusedText);
    return GetDocument()->OutOfElement();
}

int ConfigurationBase::AddItems(ItemInfoContainer& items, AddOperation add, const char* refusedText) {
    XmlDocument& document = *GetDocument();
    int added = 0;
    while (document.FindElement(ItemName)) {
        if ((items.*add)(ReadItem(document, items.Memory()))) {
            ++added;
        } else {
            ReportError(refusedText, SYSTEM_CONTROL);
        }
    }
    return added;
}

bool ConfigurationBase::WriteItem(const StdString& prefix, const StdString& sectionName, const ItemInfoElement* item) {
    XmlDocument* document = GetDocument();
    if (sectionName.IsEmpty() || item == nullptr || document == nullptr) {
        return ReportError(prefix + "Invalid input arguments", SYSTEM_CONTROL);
    }
    document->ResetPosition();
    if (!document->FindElement(AnalyzerRootName)) {
        return ReportError(prefix + "Unable to find element \"ROOT_ANALYZER\"", SYSTEM_CONTROL);
    }
    if (!document->IntoElement()) {
        return ReportError(prefix + "Unable to move in to element \"ROOT_ANALYZER\"", SYSTEM_CONTROL);
    }
    const bool written = WriteIntoSection(prefix, sectionName, *item);
    if (!document->OutOfElement()) {
        ReportError(prefix + "Unable to move out of element \"ROOT_ANALYZER\"", SYSTEM_CONTROL);
    }
    return written;
}

bool ConfigurationBase::WriteIntoSection(const StdString& prefix, const StdString& sectionName,
                                         const ItemInfoElement& item) {
    XmlDocument* document = GetDocument();
    if (!document->FindElement(sectionName.CString()) || !document->IntoElement()) {
        return ReportError(SectionFailedText, SYSTEM_CONTROL);
    }
    if (FindInfoItem(item.GetName()) && !document->RemoveElement()) {
        ReportError(prefix + "Unable to remove element", SYSTEM_CONTROL);
    }
    if (document->AddElement(ItemName, nullptr, 0)) {
        WriteAttributes(prefix, item);
    } else {
        ReportError(SectionFailedText, SYSTEM_CONTROL);
    }
    if (!document->OutOfElement()) {
        return ReportError(SectionFailedText, SYSTEM_CONTROL);
    }
    return true;
}

bool ConfigurationBase::FindInfoItem(const StdString& name) {
    while (GetDocument()->FindElement(ItemName)) {
        if (name == StdString(GetDocument()->GetAttribute("name"))) {
            return true;
        }
    }
    return false;
}

void ConfigurationBase::WriteAttributes(const StdString& prefix, const ItemInfoElement& item) {
    for (const ItemAttribute& attribute : WriteOrder) {
        if (!GetDocument()->SetAttribute(attribute.name, (item.*attribute.get)().CString())) {
            ReportError(prefix + "Unable to add attribute \"" + attribute.name + "\"", SYSTEM_CONTROL);
        }
    }
}
