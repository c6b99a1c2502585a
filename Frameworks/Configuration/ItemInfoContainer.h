// The items of one section or one step by key, in the byte order of the keys. It owns them. Any number of threads may
// read at once, while none adds or clears.
#pragma once

#include <map>
#include <memory>

#include "Frameworks/Configuration/ItemInfoElement.h"

class ItemInfoContainer {
public:
    virtual ~ItemInfoContainer() = default;

    // What a missing key is told with: the file and the part of it, such as "analyzer.conf.xml: section LOGGING_INFO".
    void SetPlace(const StdString& place) { m_place = place; }

    // False for a null element and for a key that is there already: the first one stays, and the caller keeps the
    // refused.
    bool AddItem(std::unique_ptr<ItemInfoElement>&& element);         // under its name
    bool AddItemByValue(std::unique_ptr<ItemInfoElement>&& element);  // under its value

    // Null for an unknown key. A miss leaves no trace, so that controllers may ask at the same time; nobody adds to a
    // container after asking it, so nobody could find one.
    ItemInfoElement* GetItem(const StdString& key) const;

    // The value of a key that the system can't run without: where it is missing, the process ends with a line that
    // names the place and the key, in the system log and on the error stream.
    StdString RequireValue(const StdString& key) const;
    StdString GetValueOr(const StdString& key, const StdString& fallback) const;

    void Clear() { m_items.clear(); }

private:
    bool Add(StdString key, std::unique_ptr<ItemInfoElement>&& element);

    StdString m_place = "settings";
    std::map<StdString, std::unique_ptr<ItemInfoElement>> m_items;
};
