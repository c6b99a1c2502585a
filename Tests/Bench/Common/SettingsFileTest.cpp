#include "Bench/Common/SettingsFile.h"

#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"

namespace Bench {
namespace {

// A comment with an item, either quote, several lines, an empty value, an escape and one name twice.
constexpr const char* Text = R"(<?xml version="1.0" encoding="UTF-8"?>
<ROOT>
  <!-- former levels: <INFO_ITEM name="AlarmLevel" value="0.9"/> -->
  <INFO_ITEM value='0.8' name='AlarmLevel' description="a > b"/>
  <INFO_ITEM
	name="Empty" value=""/>
  <INFO_ITEM name="Escaped" value="a&amp;b"   unit="u" />
  <STEPS><MEASUREMENT_STEP>
    <INFO_ITEM name="Step" value="Mixing"/><INFO_ITEM name="Duration" value="15000"/>
  </MEASUREMENT_STEP><MEASUREMENT_STEP>
    <INFO_ITEM name="Duration" value="1000"/><INFO_ITEM name="Step" value="Light"/>
  </MEASUREMENT_STEP></STEPS>
</ROOT>
)";

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

TEST(SettingsFile, finds_values_in_either_quote_but_not_in_comments) {
    const SettingsFile file(Text);
    EXPECT_EQ(file.Find("AlarmLevel"), "0.8");
    EXPECT_EQ(file.Find("Empty"), "");
    EXPECT_EQ(file.Find("Escaped"), "a&b");
    EXPECT_EQ(file.Find("Duration"), "15000");
    EXPECT_EQ(file.Find("Nothing"), std::nullopt);
}

TEST(SettingsFile, gives_each_item_with_its_step) {
    std::vector<std::string> items;
    for (const SettingsItem& item : SettingsFile(Text).Items()) {
        items.push_back(item.step + ":" + item.name);
    }
    EXPECT_EQ(items, (std::vector<std::string>{":AlarmLevel", ":Empty", ":Escaped", "Mixing:Step", "Mixing:Duration",
                                               "Light:Duration", "Light:Step"}));
}

TEST(SettingsFile, changes_one_value_and_nothing_else) {
    SettingsFile file(Text);
    EXPECT_TRUE(file.Set("AlarmLevel", "0.55"));
    EXPECT_EQ(file.Text(), Replaced(Text, "'0.8'", "'0.55'"));
    EXPECT_TRUE(file.Set("AlarmLevel", "0.8"));
    EXPECT_EQ(file.Text(), Text);
    EXPECT_TRUE(file.Set("Empty", "x"));
    EXPECT_EQ(file.Text(), Replaced(Text, "value=\"\"", "value=\"x\""));
    EXPECT_TRUE(file.Set("Escaped", "c"));
    EXPECT_EQ(file.Find("Escaped"), "c");
    EXPECT_TRUE(file.Set("Duration", "7"));
    EXPECT_EQ(file.Items().at(4).value, "7");
    EXPECT_EQ(file.Items().at(5).value, "1000");
}

TEST(SettingsFile, changes_all_values_of_a_name) {
    SettingsFile file(Text);
    EXPECT_TRUE(file.SetAll("Duration", "250"));
    EXPECT_EQ(file.Text(), Replaced(Replaced(Text, "15000", "250"), "1000", "250"));
}

TEST(SettingsFile, removes_one_element) {
    SettingsFile file(Text);
    EXPECT_TRUE(file.Remove("AlarmLevel"));
    EXPECT_EQ(file.Text(), Replaced(Text, R"(<INFO_ITEM value='0.8' name='AlarmLevel' description="a > b"/>)", ""));
}

TEST(SettingsFile, keeps_the_text_without_such_an_item) {
    SettingsFile file(Text);
    EXPECT_FALSE(file.Set("Nothing", "1"));
    EXPECT_FALSE(file.SetAll("Nothing", "1"));
    EXPECT_FALSE(file.Remove("Nothing"));
    EXPECT_EQ(file.Text(), Text);
}

TEST(SettingsFile, knows_the_items_before_a_fault) {
    for (const char* fault : {"<INFO_ITEM name=\"B\" value=\"2.4", "<INFO_ITEM name=\"B\" value=\"2.4>", "<A", "<&>"}) {
        SettingsFile file(std::string("<ROOT><INFO_ITEM name=\"A\" value=\"1\"/>") + fault);
        EXPECT_EQ(file.Find("A"), "1") << fault;
        EXPECT_EQ(file.Find("B"), std::nullopt) << fault;
        EXPECT_TRUE(file.Set("A", "2"));
        EXPECT_EQ(file.Text(), std::string("<ROOT><INFO_ITEM name=\"A\" value=\"2\"/>") + fault);
    }
    EXPECT_TRUE(SettingsFile("").Items().empty());
}

TEST(SettingsFile, is_read_byte_for_byte) {
    const TemporaryFolder folder;
    WriteFile(folder / "c.xml", "<A>\r\n\xE4</A>");
    SettingsFile file;
    std::string error;
    EXPECT_TRUE(file.Read(folder / "c.xml", error)) << error;
    EXPECT_EQ(file.Text(), "<A>\r\n\xE4</A>");
}

TEST(SettingsFile, missing_file_and_folder_are_named) {
    for (const char* path : {"/nowhere/c.xml", "/tmp"}) {
        SettingsFile file;
        std::string error;
        EXPECT_FALSE(file.Read(path, error));
        EXPECT_EQ(error, std::string("can't read the configuration ") + path);
    }
}

}  // namespace
}  // namespace Bench
