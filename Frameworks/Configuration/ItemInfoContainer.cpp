#include "Frameworks/Configuration/ItemInfoContainer.h"

#include "Frameworks/Configuration/MissingSetting.h"

bool ItemInfoContainer::AddItem(std::unique_ptr<ItemInfoElement>&& element) {
    return element != nullptr &&
           Add(element->GetName().Text(), [&element] { return Owner(element.release(), Release{false}); });
}

bool ItemInfoContainer::AddItemByValue(std::unique_ptr<ItemInfoElement>&& element) {
    return element != nullptr &&
           Add(element->GetValue().Text(), [&element] { return Owner(element.release(), Release{false}); });
}

bool ItemInfoContainer::AddItem(const ItemTexts& texts) { return Add(texts.name, texts); }

bool ItemInfoContainer::AddItemByValue(const ItemTexts& texts) { return Add(texts.value, texts); }

bool ItemInfoContainer::Add(std::string_view key, const ItemTexts& texts) {
    return Add(key, [this, &texts] {
        std::pmr::polymorphic_allocator<> blocks(&m_blocks);
        return Owner(blocks.new_object<ItemInfoElement>(texts), Release{true});
    });
}

template <class Make>
bool ItemInfoContainer::Add(std::string_view key, const Make& make) {
    const auto [place, isNew] = m_items.emplace(key, nullptr);
    if (isNew) {
        place->second = make();
    }
    return isNew;
}

void ItemInfoContainer::Clear() {
    m_items.clear();
    m_blocks.release();
}

void ItemInfoContainer::Release::operator()(ItemInfoElement* element) const {
    if (isInBlock) {
        std::destroy_at(element);
    } else {
        delete element;
    }
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
