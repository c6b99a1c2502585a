#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "Frameworks/Configuration/InfoContainer.h"

namespace {

std::unique_ptr<ItemInfoElement> Item(const char* name, const char* value) {
    auto item = std::make_unique<ItemInfoElement>();
    item->SetName(name);
    item->SetValue(value);
    return item;
}

// With its texts in the container's memory.
std::unique_ptr<ItemInfoElement> Item(ItemInfoContainer& items, const ItemTexts& texts) {
    return std::make_unique<ItemInfoElement>(texts, items.Memory());
}

constexpr char LongText[] = "a text that is too long for the item itself";

}  // namespace

TEST(ItemInfoElement, all_texts_are_empty_at_first) {
    const ItemInfoElement item;
    EXPECT_EQ(item.GetDescription(), "");
    EXPECT_EQ(item.GetName(), "");
    EXPECT_EQ(item.GetType(), "");
    EXPECT_EQ(item.GetUnitOfMeasure(), "");
    EXPECT_EQ(item.GetValue(), "");
}

TEST(ItemInfoElement, each_getter_gives_what_its_setter_took) {
    ItemInfoElement item;
    item.SetDescription("d");
    item.SetName("n");
    item.SetType("t");
    item.SetUnitOfMeasure("u");
    item.SetValue("v");
    EXPECT_EQ(item.GetDescription(), "d");
    EXPECT_EQ(item.GetName(), "n");
    EXPECT_EQ(item.GetType(), "t");
    EXPECT_EQ(item.GetUnitOfMeasure(), "u");
    EXPECT_EQ(item.GetValue(), "v");
}

TEST(ItemInfoContainer, null_is_refused) {
    ItemInfoContainer items;
    EXPECT_FALSE(items.AddItem(nullptr));
    EXPECT_FALSE(items.AddItemByValue(nullptr));
}

TEST(ItemInfoContainer, an_item_is_found_under_its_name) {
    ItemInfoContainer items;
    EXPECT_TRUE(items.AddItem(Item("Name", "Value")));
    ASSERT_NE(items.GetItem("Name"), nullptr);
    EXPECT_EQ(items.GetItem("Name")->GetValue(), "Value");
    EXPECT_EQ(items.GetItem("Value"), nullptr);
}

TEST(ItemInfoContainer, an_item_added_by_value_is_found_under_its_value) {
    ItemInfoContainer items;
    EXPECT_TRUE(items.AddItemByValue(Item("Name", "Value")));
    ASSERT_NE(items.GetItem("Value"), nullptr);
    EXPECT_EQ(items.GetItem("Value")->GetName(), "Name");
    EXPECT_EQ(items.GetItem("Name"), nullptr);
}

TEST(ItemInfoContainer, an_item_has_copies_of_the_texts_it_is_made_of) {
    ItemInfoContainer items;
    std::string description = LongText;
    EXPECT_TRUE(items.AddItem(Item(items, {"Name", description, "Type", "Unit", "Value"})));
    description.assign(description.size(), '-');
    const ItemInfoElement* item = items.GetItem("Name");
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->GetName(), "Name");
    EXPECT_EQ(item->GetDescription(), LongText);
    EXPECT_EQ(item->GetType(), "Type");
    EXPECT_EQ(item->GetUnitOfMeasure(), "Unit");
    EXPECT_EQ(item->GetValue(), "Value");
}

TEST(ItemInfoContainer, an_item_takes_other_texts_and_keeps_its_key) {
    ItemInfoContainer items;
    items.AddItem(Item(items, {.name = "Name", .value = "Value"}));
    items.GetItem("Name")->SetName("Other");
    items.GetItem("Name")->SetValue(LongText);
    EXPECT_EQ(items.GetItem("Name")->GetName(), "Other");
    EXPECT_EQ(items.GetItem("Name")->GetValue(), LongText);
    EXPECT_EQ(items.GetItem("Other"), nullptr);
}

TEST(ItemInfoContainer, a_copy_of_an_item_outlives_the_container) {
    auto items = std::make_unique<ItemInfoContainer>();
    items->AddItem(Item(*items, {.name = "Name", .value = LongText}));
    ItemInfoElement assigned;
    assigned = *items->GetItem("Name");
    const ItemInfoElement copied = *items->GetItem("Name");
    items.reset();
    EXPECT_EQ(copied.GetValue(), LongText);
    EXPECT_EQ(assigned.GetValue(), LongText);
}

TEST(ItemInfoContainer, many_items_are_found_until_it_is_cleared) {
    constexpr int Count = 1000;
    ItemInfoContainer items;
    for (int round = 0; round < 2; ++round) {
        for (int number = 0; number < Count; ++number) {
            const std::string name = "a name that is a long one: " + std::to_string(number);
            EXPECT_TRUE(items.AddItem(Item(items, {.name = name, .value = std::to_string(number)})));
        }
        for (int number = 0; number < Count; ++number) {
            const ItemInfoElement* item = items.GetItem("a name that is a long one: " + std::to_string(number));
            ASSERT_NE(item, nullptr);
            EXPECT_EQ(item->GetValue(), StdString(std::to_string(number)));
        }
        items.Clear();
        EXPECT_EQ(items.GetItem("a name that is a long one: 0"), nullptr);
    }
}

TEST(ItemInfoContainer, keys_are_case_sensitive) {
    ItemInfoContainer items;
    EXPECT_TRUE(items.AddItem(Item("name", "1")));
    EXPECT_TRUE(items.AddItem(Item("Name", "2")));
    EXPECT_EQ(items.GetItem("name")->GetValue(), "1");
    EXPECT_EQ(items.GetItem("Name")->GetValue(), "2");
    EXPECT_EQ(items.GetItem("NAME"), nullptr);
}

TEST(ItemInfoContainer, the_first_item_under_a_key_stays) {
    ItemInfoContainer items;
    EXPECT_TRUE(items.AddItem(Item("Name", "first")));
    EXPECT_FALSE(items.AddItem(Item("Name", "second")));
    EXPECT_EQ(items.GetItem("Name")->GetValue(), "first");
}

TEST(ItemInfoContainer, the_first_item_under_a_value_stays) {
    ItemInfoContainer items;
    EXPECT_TRUE(items.AddItemByValue(Item("first", "Value")));
    EXPECT_FALSE(items.AddItemByValue(Item("second", "Value")));
    EXPECT_EQ(items.GetItem("Value")->GetName(), "first");
}

TEST(ItemInfoContainer, a_refused_item_stays_with_its_caller) {
    ItemInfoContainer items;
    items.AddItem(Item("Name", "first"));
    auto second = Item("Name", "second");
    EXPECT_FALSE(items.AddItem(std::move(second)));
    ASSERT_NE(second, nullptr);               // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(second->GetValue(), "second");  // NOLINT(bugprone-use-after-move)
}

TEST(ItemInfoContainer, an_unknown_key_is_null_each_time_and_clear_survives_it) {
    ItemInfoContainer items;
    items.AddItem(Item("Name", "Value"));
    EXPECT_EQ(items.GetItem("Other"), nullptr);
    EXPECT_EQ(items.GetItem("Other"), nullptr);
    items.Clear();
    EXPECT_EQ(items.GetItem("Name"), nullptr);
    EXPECT_EQ(items.GetItem("Other"), nullptr);
}

TEST(ItemInfoContainer, clearing_an_empty_container_does_nothing) {
    ItemInfoContainer items;
    items.Clear();
    EXPECT_TRUE(items.AddItem(Item("Name", "Value")));
}

TEST(ItemInfoContainer, several_threads_may_miss_at_once) {
    ItemInfoContainer items;
    items.AddItem(Item("Name", "Value"));
    const auto ask = [&items](bool& right) {
        for (int i = 0; i < 1000; ++i) {
            StdString key;
            key.FromInteger(i);
            right = right && items.GetItem(key) == nullptr && items.GetItem("Name") != nullptr;
        }
    };
    bool firstRight = true;
    bool secondRight = true;
    std::thread first(ask, std::ref(firstRight));
    std::thread second(ask, std::ref(secondRight));
    first.join();
    second.join();
    EXPECT_TRUE(firstRight);
    EXPECT_TRUE(secondRight);
}

TEST(ItemInfoContainer, a_missing_value_takes_the_fallback) {
    ItemInfoContainer items;
    items.AddItem(Item("Name", ""));
    EXPECT_EQ(items.GetValueOr("Other", "fallback"), "fallback");
    EXPECT_EQ(items.GetValueOr("Name", "fallback"), "");
}

TEST(ItemInfoContainer, a_required_value_is_the_value) {
    ItemInfoContainer items;
    items.AddItem(Item("Name", "Value"));
    EXPECT_EQ(items.RequireValue("Name"), "Value");
}

TEST(ItemInfoContainerDeathTest, a_missing_required_key_ends_the_process) {
    ItemInfoContainer items;
    items.SetPlace("analyzer.conf.xml: section LOGGING_INFO");
    EXPECT_DEATH(items.RequireValue("LoggingLevel"),
                 "^analyzer\\.conf\\.xml: section LOGGING_INFO has no key LoggingLevel\n");
}

TEST(InfoContainer, null_is_refused) {
    InfoContainer containers;
    EXPECT_FALSE(containers.AddItemContainer(nullptr, "key"));
    EXPECT_EQ(containers.GetItemContainer("key"), nullptr);
}

TEST(InfoContainer, the_first_container_under_a_key_stays) {
    InfoContainer containers;
    auto first = std::make_unique<ItemInfoContainer>();
    const ItemInfoContainer* kept = first.get();
    EXPECT_TRUE(containers.AddItemContainer(std::move(first), "key"));
    EXPECT_FALSE(containers.AddItemContainer(std::make_unique<ItemInfoContainer>(), "key"));
    EXPECT_EQ(containers.GetItemContainer("key"), kept);
}

TEST(InfoContainer, an_unknown_key_is_null_each_time_and_clear_survives_it) {
    InfoContainer containers;
    containers.AddItemContainer(std::make_unique<ItemInfoContainer>(), "key");
    EXPECT_EQ(containers.GetItemContainer("Key"), nullptr);
    EXPECT_EQ(containers.GetItemContainer("Key"), nullptr);
    containers.Clear();
    EXPECT_EQ(containers.GetItemContainer("key"), nullptr);
    EXPECT_EQ(containers.GetItemContainer("Key"), nullptr);
}
