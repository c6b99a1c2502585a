// Item containers by key: the measurement steps by their names. It owns them. Any number of threads may read at once
// while none adds or clears.
#pragma once

#include <map>
#include <memory>

#include "Frameworks/Configuration/ItemInfoContainer.h"

class InfoContainer {
public:
    virtual ~InfoContainer() = default;

    // Returns false for a null container and for a known key: the first one stays, and the caller keeps the refused
    // one.
    bool AddItemContainer(std::unique_ptr<ItemInfoContainer>&& container, const StdString& key);

    // Null for an unknown key; a miss adds nothing.
    ItemInfoContainer* GetItemContainer(const StdString& key) const;

    void Clear() { m_containers.clear(); }

private:
    std::map<StdString, std::unique_ptr<ItemInfoContainer>> m_containers;
};
