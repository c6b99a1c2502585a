#include "Frameworks/Configuration/ItemInfoContainer.h"

#include "Frameworks/Configuration/MissingSetting.h"

bool ItemInfoContainer::AddItem(std::unique_ptr<ItemInfoElement>&& element) {
    return element != nullptr && m_items.try_emplace(element->m_name, std::move(element)).second;
}

bool ItemInfoContainer::AddItemByValue(std::unique_ptr<ItemInfoElement>&& element) {
    return element != nullptr && m_items.try_emplace(element->m_value, std::move(element)).second;
}

void ItemInfoContainer::Clear() {
    m_items.clear();
    m_memory.release();
}

ItemInfoElement* ItemInfoContainer::GetItem(const StdString& key) const {
    const auto found = m_items.find(std::string_view(key.Text()));
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
