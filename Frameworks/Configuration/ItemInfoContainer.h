// The items of one section or one step by key, in the byte order of the keys. It owns them, and their texts can be in
// its memory, which takes one allocation for many items. Any number of threads may read at once while none adds, clears
// or changes an item.
#pragma once

#include <map>
#include <memory>
#include <memory_resource>

#include "Frameworks/Configuration/ItemInfoElement.h"

class ItemInfoContainer {
public:
    virtual ~ItemInfoContainer() = default;

    // File and part of it, for the message about a missing key, such as "analyzer.conf.xml: section LOGGING_INFO".
    void SetPlace(const StdString& place) { m_place = place; }

    // Return false for null and for a known key: the first element stays, and the caller keeps the refused one.
    bool AddItem(std::unique_ptr<ItemInfoElement>&& element);         // under its name
    bool AddItemByValue(std::unique_ptr<ItemInfoElement>&& element);  // under its value

    // Null for an unknown key. A miss adds nothing, so that controllers may ask at the same time; nothing is added to a
    // container after the first question, so a null entry would not be seen.
    ItemInfoElement* GetItem(const StdString& key) const;

    // The value of a required key. If it is missing, the process ends with a line that names the place and the key, in
    // the system log and on the error stream.
    StdString RequireValue(const StdString& key) const;
    StdString GetValueOr(const StdString& key, const StdString& fallback) const;

    // Frees every item and the memory.
    void Clear();

    // For the texts of items that are added here. Free a refused item before the container.
    std::pmr::memory_resource* Memory() { return &m_memory; }

private:
    static constexpr std::size_t FirstBlock = 2048;  // bytes, about ten items; each later block is larger

    StdString m_place = "settings";
    std::pmr::monotonic_buffer_resource m_memory{FirstBlock};
    std::pmr::map<std::pmr::string, std::unique_ptr<ItemInfoElement>, std::less<>> m_items{&m_memory};
};
