// The items of one section or one step by key, in the byte order of the keys. It owns them. Those that it makes of
// texts lie side by side in few large blocks, which go when it is cleared. Any number of threads may read at once,
// while none adds, clears or changes an item.
#pragma once

#include <map>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>

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
    // The same for an item made of these texts; a refused one is not made.
    bool AddItem(const ItemTexts& texts);
    bool AddItemByValue(const ItemTexts& texts);

    // Null for an unknown key. A miss leaves no trace, so that controllers may ask at the same time; nobody adds to a
    // container after asking it, so nobody could find one.
    ItemInfoElement* GetItem(const StdString& key) const;

    // The value of a key that the system can't run without: where it is missing, the process ends with a line that
    // names the place and the key, in the system log and on the error stream.
    StdString RequireValue(const StdString& key) const;
    StdString GetValueOr(const StdString& key, const StdString& fallback) const;

    // Frees every item.
    void Clear();

private:
    static constexpr std::size_t FirstBlock = 2048;  // bytes, some five items; each one behind it is larger

    // The memory of an item that lies in a block goes with the block.
    struct Release {
        bool isInBlock = false;

        void operator()(ItemInfoElement* element) const;
    };
    using Owner = std::unique_ptr<ItemInfoElement, Release>;

    // Under the key, unless it is there already, the element that `make` gives.
    template <class Make>
    bool Add(std::string_view key, const Make& make);
    bool Add(std::string_view key, const ItemTexts& texts);

    StdString m_place = "settings";
    std::pmr::monotonic_buffer_resource m_blocks{FirstBlock};
    std::pmr::map<std::pmr::string, Owner, std::less<>> m_items{&m_blocks};
};
