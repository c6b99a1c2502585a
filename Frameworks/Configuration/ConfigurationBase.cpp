#include "Frameworks/Configuration/ConfigurationBase.h"

#include "Frameworks/Configuration/MissingSetting.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr const char* RootName = "ROOT_ANALYZER";
constexpr const char* ItemName = "INFO_ITEM";

// A section that can't be found, entered, left or added to is logged by this one character, without the section's name:
// the watchers of existing logs know the failure by it.
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

void ReportError(const StdString& text) { Report(text, ERROR_LOG_LEVEL, SYSTEM_CONTROL); }

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
        auto item = std::make_unique<ItemInfoElement>();
        item->SetName(document.GetAttribute("name"));
        item->SetDescription(document.GetAttribute("description"));
        item->SetType(document.GetAttribute("type"));
        item->SetUnitOfMeasure(document.GetAttribute("unitOfMeasure"));
        item->SetValue(document.GetAttribute("value"));
        if ((items.*add)(std::move(item))) {
            ++added;
        } else {
            ReportError(refusedText);
        }
    }
    return added;
}

bool ConfigurationBase::WriteItem(const StdString& prefix, const StdString& sectionName, const ItemInfoElement* item) {
    XmlDocument* document = GetDocument();
    if (sectionName.IsEmpty() || item == nullptr || document == nullptr) {
        ReportError(prefix + "Invalid input arguments");
        return false;
    }
    document->ResetPosition();
    if (!document->FindElement(RootName)) {
        ReportError(prefix + "Unable to find element \"ROOT_ANALYZER\"");
        return false;
    }
    if (!document->IntoElement()) {
        ReportError(prefix + "Unable to move in to element \"ROOT_ANALYZER\"");
        return false;
    }
    const bool written = WriteIntoSection(prefix, sectionName, *item);
    if (!document->OutOfElement()) {
        ReportError(prefix + "Unable to move out of element \"ROOT_ANALYZER\"");
    }
    return written;
}

bool ConfigurationBase::WriteIntoSection(const StdString& prefix, const StdString& sectionName,
                                         const ItemInfoElement& item) {
    XmlDocument* document = GetDocument();
    if (!document->FindElement(sectionName.CString()) || !document->IntoElement()) {
        ReportError(SectionFailedText);
        return false;
    }
    if (FindInfoItem(item.GetName()) && !document->RemoveElement()) {
        ReportError(prefix + "Unable to remove element");
    }
    if (document->AddElement(ItemName, nullptr, 0)) {
        WriteAttributes(prefix, item);
    } else {
        ReportError(SectionFailedText);
    }
    if (!document->OutOfElement()) {
        ReportError(SectionFailedText);
        return false;
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
            ReportError(prefix + "Unable to add attribute \"" + attribute.name + "\"");
        }
    }
}
