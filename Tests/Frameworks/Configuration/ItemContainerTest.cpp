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

TEST(ItemInfoContainer, an_item_made_of_texts_has_copies_of_all_five) {
    ItemInfoContainer items;
    std::string description = "a description that is too long to lie in the item itself";
    EXPECT_TRUE(items.AddItem(ItemTexts{"Name", description, "Type", "Unit", "Value"}));
    description.assign(description.size(), '-');
    const ItemInfoElement* item = items.GetItem("Name");
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->GetName(), "Name");
    EXPECT_EQ(item->GetDescription(), "a description that is too long to lie in the item itself");
    EXPECT_EQ(item->GetType(), "Type");
    EXPECT_EQ(item->GetUnitOfMeasure(), "Unit");
    EXPECT_EQ(item->GetValue(), "Value");
    EXPECT_EQ(items.GetItem("Value"), nullptr);
}

TEST(ItemInfoContainer, an_item_made_of_texts_by_value_is_found_under_its_value) {
    ItemInfoContainer items;
    EXPECT_TRUE(items.AddItemByValue(ItemTexts{.name = "Name", .value = "Value"}));
    ASSERT_NE(items.GetItem("Value"), nullptr);
    EXPECT_EQ(items.GetItem("Value")->GetName(), "Name");
    EXPECT_EQ(items.GetItem("Name"), nullptr);
}

TEST(ItemInfoContainer, the_first_item_stays_whether_given_or_made_of_texts) {
    ItemInfoContainer items;
    EXPECT_TRUE(items.AddItem(Item("Given", "first")));
    EXPECT_TRUE(items.AddItem(ItemTexts{.name = "Made", .value = "first"}));
    EXPECT_FALSE(items.AddItem(ItemTexts{.name = "Given", .value = "second"}));
    EXPECT_FALSE(items.AddItem(Item("Made", "second")));
    EXPECT_EQ(items.GetItem("Given")->GetValue(), "first");
    EXPECT_EQ(items.GetItem("Made")->GetValue(), "first");
}

TEST(ItemInfoContainer, an_item_made_of_texts_takes_other_texts_and_keeps_its_key) {
    ItemInfoContainer items;
    items.AddItem(ItemTexts{.name = "Name", .value = "Value"});
    items.GetItem("Name")->SetName("Other");
    items.GetItem("Name")->SetValue("a value that is too long to lie in the item itself");
    EXPECT_EQ(items.GetItem("Name")->GetName(), "Other");
    EXPECT_EQ(items.GetItem("Name")->GetValue(), "a value that is too long to lie in the item itself");
    EXPECT_EQ(items.GetItem("Other"), nullptr);
}

TEST(ItemInfoContainer, a_copy_of_an_item_outlives_the_container) {
    auto items = std::make_unique<ItemInfoContainer>();
    items->AddItem(ItemTexts{.name = "Name", .value = "a value that is too long to lie in the item itself"});
    ItemInfoElement assigned;
    assigned = *items->GetItem("Name");
    const ItemInfoElement copied = *items->GetItem("Name");
    items.reset();
    EXPECT_EQ(copied.GetValue(), "a value that is too long to lie in the item itself");
    EXPECT_EQ(assigned.GetValue(), "a value that is too long to lie in the item itself");
}

TEST(ItemInfoContainer, many_items_made_of_texts_are_found_and_gone_when_it_is_cleared) {
    constexpr int Count = 1000;
    ItemInfoContainer items;
    for (int round = 0; round < 2; ++round) {
        for (int number = 0; number < Count; ++number) {
            const std::string name = "a name that is a long one: " + std::to_string(number);
            EXPECT_TRUE(items.AddItem(ItemTexts{.name = name, .value = std::to_string(number)}));
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

TEST(ItemInfoContainerDeathTest, a_missing_required_value_ends_the_process_and_names_place_and_key) {
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
