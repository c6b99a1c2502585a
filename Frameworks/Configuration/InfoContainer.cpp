#include "Frameworks/Configuration/InfoContainer.h"

bool InfoContainer::AddItemContainer(std::unique_ptr<ItemInfoContainer>&& container, const StdString& key) {
    return container != nullptr && m_containers.try_emplace(key, std::move(container)).second;
}

ItemInfoContainer* InfoContainer::GetItemContainer(const StdString& key) const {
    const auto found = m_containers.find(key);
    return found == m_containers.end() ? nullptr : found->second.get();
}
