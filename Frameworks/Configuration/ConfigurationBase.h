// One section of a settings file: a flat run of INFO_ITEM elements, held by name. "Get" reads from the document into
// the object, "Set" writes from the object into the document. The document and its cursor are shared by all sections,
// so reading and writing is for one thread; once read, any thread may ask for items.
#pragma once

#include <memory>

#include "Frameworks/Configuration/ItemInfoContainer.h"
#include "Frameworks/Xml/XMLData.h"

// Of every settings file but the user's.
inline constexpr const char* AnalyzerRootName = "ROOT_ANALYZER";

class ConfigurationBase : public XMLData {
public:
    // Reads the section from among the siblings behind the document's current position, which must be inside the root,
    // and leaves the position on the section. Elements handed out before are gone afterwards. False: no document, no
    // such section (the items stay as they were), or the section could not be entered or left. A section without items
    // is no failure.
    virtual bool GetXML(const StdString& sectionName);

    // Replaces or adds one item of a section in the document; saving it is the caller's. Only a document whose root is
    // ROOT_ANALYZER has it. The position is reset, and ends on the root.
    virtual bool SetXML(const StdString& sectionName, ItemInfoElement* item);

    // Null for an unknown key, and before the first read.
    ItemInfoElement* GetItem(const StdString& name) const;

    // The value of a key that the system can't run without: where it is missing, the process ends with a line that
    // names the file, the section and the key, in the system log and on the error stream.
    StdString RequireValue(const StdString& key) const;
    StdString GetValueOr(const StdString& key, const StdString& fallback) const;

    ItemInfoContainer* GetItems() const { return m_items.get(); }
    void SetItems(std::unique_ptr<ItemInfoContainer> items) { m_items = std::move(items); }

    // The file's path, for the line about a missing key. Set it before reading.
    void SetSource(const StdString& path) { m_source = path; }

protected:
    // By name or by value.
    using AddOperation = bool (ItemInfoContainer::*)(const ItemTexts&);

    // The steps of reading and writing that a section with more than a flat run of items shares. Each needs a document,
    // but for FindSection and WriteItem, which test for it.
    bool FindSection(const StdString& sectionName);  // and sees to it that there is a container
    bool ReadItems(const char* refusedText);         // of the current element, in place of the items held
    // The INFO_ITEM elements behind the position; the number of those that were not refused.
    int AddItems(ItemInfoContainer& items, AddOperation add, const char* refusedText);
    // "prefix" stands in front of each report.
    bool WriteItem(const StdString& prefix, const StdString& sectionName, const ItemInfoElement* item);

    StdString Place() const;  // file and section, as a missing key is told with

private:
    bool WriteIntoSection(const StdString& prefix, const StdString& sectionName, const ItemInfoElement& item);
    bool FindInfoItem(const StdString& name);
    void WriteAttributes(const StdString& prefix, const ItemInfoElement& item);

    std::unique_ptr<ItemInfoContainer> m_items;
    StdString m_source = "settings";
    StdString m_sectionName;
};
