// One section of a settings file: a flat run of INFO_ITEM elements, held by name. "Get" reads from the document into
// the object, "Set" writes from the object into the document. All sections share the document and its cursor, so only
// one thread reads and writes; after reading, any thread may ask for items.
#pragma once

#include <memory>

#include "Frameworks/Configuration/ItemInfoContainer.h"
#include "Frameworks/Xml/XMLData.h"

// Root element of every settings file except the user's.
inline constexpr const char* AnalyzerRootName = "ROOT_ANALYZER";

class ConfigurationBase : public XMLData {
public:
    // Reads the section from the siblings after the document's current position, which must be inside the root, and
    // leaves the position on the section. Frees the elements read before. Returns false without a document, without the
    // section (the items stay), or if the section could not be entered or left. A section without items is no failure.
    virtual bool GetXML(const StdString& sectionName);

    // Replaces or adds one item of a section in the document, without saving it. The root must be ROOT_ANALYZER. The
    // position is reset and ends on the root.
    virtual bool SetXML(const StdString& sectionName, ItemInfoElement* item);

    // Null for an unknown key, and before the first read.
    ItemInfoElement* GetItem(const StdString& name) const;

    // The value of a required key. If it is missing, the process ends with a line that names the file, the section and
    // the key, in the system log and on the error stream.
    StdString RequireValue(const StdString& key) const;
    StdString GetValueOr(const StdString& key, const StdString& fallback) const;

    ItemInfoContainer* GetItems() const { return m_items.get(); }
    void SetItems(std::unique_ptr<ItemInfoContainer> items) { m_items = std::move(items); }

    // The file's path, for the message about a missing key. Set it before reading.
    void SetSource(const StdString& path) { m_source = path; }

protected:
    // By name or by value.
    using AddOperation = bool (ItemInfoContainer::*)(std::unique_ptr<ItemInfoElement>&&);

    // Steps of reading and writing, for a section with more than a flat run of items. All need a document; FindSection
    // and WriteItem test for it.
    bool FindSection(const StdString& sectionName);  // also creates the container
    bool ReadItems(const char* refusedText);         // of the current element; replaces the items held
    // Adds the INFO_ITEM elements after the position; returns the number that were not refused.
    int AddItems(ItemInfoContainer& items, AddOperation add, const char* refusedText);
    // Each report begins with `prefix`.
    bool WriteItem(const StdString& prefix, const StdString& sectionName, const ItemInfoElement* item);

    StdString Place() const;  // file and section, for the message about a missing key

private:
    bool WriteIntoSection(const StdString& prefix, const StdString& sectionName, const ItemInfoElement& item);
    bool FindInfoItem(const StdString& name);
    void WriteAttributes(const StdString& prefix, const ItemInfoElement& item);

    std::unique_ptr<ItemInfoContainer> m_items;
    StdString m_source = "settings";
    StdString m_sectionName;
};
