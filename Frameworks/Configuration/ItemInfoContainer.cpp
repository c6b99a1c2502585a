#include "Frameworks/Configuration/ItemInfoContainer.h"

#include "Frameworks/Configuration/MissingSetting.h"

bool ItemInfoContainer::AddItem(std::unique_ptr<ItemInfoElement>&& element) {
    return element != nullptr && Add(element->GetName(), std::move(element));
}

bool ItemInfoContainer::AddItemByValue(std::unique_ptr<ItemInfoElement>&& element) {
    return element != nullptr && Add(element->GetValue(), std::move(element));
}

bool ItemInfoContainer::Add(StdString key, std::unique_ptr<ItemInfoElement>&& element) {
    return m_items.try_emplace(std::move(key), std::move(element)).second;
}

ItemInfoElement* ItemInfoContainer::GetItem(const StdString& key) const {
    const auto found = m_items.find(key);
    return found == m_items.end() ? nullptr : found->second.get();
}

StdString ItemInfoContainer::RequireValue(const StdString& key) const {
    const ItemInfoElement* item = GetItem(key);
    if (item == nullptr) {
        EndForMissingKey(m_place, key);
    }
    return item->GetValue();
}

StdString ItemInfoContainer::GetValueOr(const StdString& key, const StdString& fallback) const {
    const ItemInfoElement* item = GetItem(key);
    return item == nullptr ? fallback : item->GetValue();
}
