#include "Frameworks/Configuration/ConfigurationBase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Support/ReportedLines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigurationSection : public testing::Test {
protected:
    // Leaves the position before the first child of the root, as for reading a section.
    void SetText(const char* text) {
        ASSERT_TRUE(m_document.SetDocumentText(text));
        ASSERT_TRUE(m_document.FindElement());
        ASSERT_TRUE(m_document.IntoElement());
        m_section.SetDocument(&m_document);
    }

    static ItemInfoElement Item(const char* name, const char* value) {
        ItemInfoElement item;
        item.SetName(name);
        item.SetType("text");
        item.SetValue(value);
        item.SetDescription("about it");
        item.SetUnitOfMeasure("N/A");
        return item;
    }

    StdString Value(const char* key) {
        const ItemInfoElement* item = m_section.GetItem(key);
        return item == nullptr ? StdString("no item") : item->GetValue();
    }

    ReportedLines m_lines;
    XmlDocument m_document;
    ConfigurationBase m_section;
};

constexpr const char* TwoItems =
    "<ROOT_ANALYZER>\n"
    "<SYSTEM_INFO>\n"
    "<INFO_ITEM value=\"1\" name=\"A\"/>\n"
    "<INFO_ITEM unitOfMeasure=\"x\" value=\"2\" name=\"B\"/>\n"
    "<INFO_ITEM name=\"C\" value=\"3\"/>\n"
    "</SYSTEM_INFO>\n"
    "</ROOT_ANALYZER>\n";

}  // namespace

TEST_F(ConfigurationSection, without_a_document_reads_and_finds_nothing) {
    EXPECT_FALSE(m_section.GetXML("SYSTEM_INFO"));
    EXPECT_EQ(m_section.GetItem("A"), nullptr);
    EXPECT_EQ(m_section.GetItems(), nullptr);
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(ConfigurationSection, reads_all_five_attributes_of_an_item) {
    SetText(
        "<ROOT_ANALYZER><S><INFO_ITEM name='n' type='t' value='v' description='d' unitOfMeasure='u'/></S>"
        "</ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    const ItemInfoElement* item = m_section.GetItem("n");
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->GetName(), "n");
    EXPECT_EQ(item->GetType(), "t");
    EXPECT_EQ(item->GetValue(), "v");
    EXPECT_EQ(item->GetDescription(), "d");
    EXPECT_EQ(item->GetUnitOfMeasure(), "u");
}

// The texts are the same for any form of the attributes.
TEST_F(ConfigurationSection, reads_an_item_in_each_form_of_its_tag) {
    constexpr const char* Tags[] = {
        R"(<INFO_ITEM name="n" type="t" value="a long value &gt; 5" description="d" unitOfMeasure="u"/>)",
        R"(<INFO_ITEM name="n" type="t" value="a long value > 5" description="d" unitOfMeasure="u"/>)",
        R"(<INFO_ITEM name="n" type="t" value="a long value > 5" description="d" unitOfMeasure="u" />)",
        R"(<INFO_ITEM name="n" type="t" value="a long value > 5" description="d" unitOfMeasure="u"></INFO_ITEM>)",
        R"(<INFO_ITEM name="n" type="t" value="a long value > 5" description='d' unitOfMeasure='u'/>)",
        R"(<INFO_ITEM name="n" type="t" value="a long value > 5" description="d" unitOfMeasure=u/>)",
        R"(<INFO_ITEM name="n" type="t" value ="a long value > 5" description="d" unitOfMeasure= "u"/>)",
        "<INFO_ITEM\n name=\"n\" type=\"t\"  value=\"a long value > 5\" description=\"d\"\tunitOfMeasure=\"u\"/>",
        R"(<INFO_ITEM name="n" value="a long value > 5" type="t" description="d" unitOfMeasure="u"/>)",
        R"(<INFO_ITEM names="-" name="n" type="t" value="a long value > 5" description="d" unitOfMeasure="u"/>)",
        R"(<INFO_ITEM name="n" name="-" type="t" value="a long value > 5" description="d" unitOfMeasure="u"/>)",
        R"(<INFO_ITEM name="n" type="t" value="a long value > 5" description="d" unitOfMeasure="u" name="-"/>)",
    };
    for (const char* tag : Tags) {
        SetText(("<ROOT_ANALYZER><S>" + std::string(tag) + "</S></ROOT_ANALYZER>").c_str());
        ASSERT_TRUE(m_section.GetXML("S"));
        const ItemInfoElement* item = m_section.GetItem("n");
        ASSERT_NE(item, nullptr) << tag;
        EXPECT_EQ(item->GetName(), "n") << tag;
        EXPECT_EQ(item->GetType(), "t") << tag;
        EXPECT_EQ(item->GetValue(), "a long value > 5") << tag;
        EXPECT_EQ(item->GetDescription(), "d") << tag;
        EXPECT_EQ(item->GetUnitOfMeasure(), "u") << tag;
    }
}

TEST_F(ConfigurationSection, a_missing_attribute_reads_as_empty_text) {
    SetText(
        "<ROOT_ANALYZER><S>"
        R"(<INFO_ITEM name="n" type="of the item before" value="1" description="d" unitOfMeasure="u"/>)"
        R"(<INFO_ITEM name="m" type="t" value="2"/>)"
        "</S></ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    const ItemInfoElement* item = m_section.GetItem("m");
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->GetType(), "t");
    EXPECT_EQ(item->GetValue(), "2");
    EXPECT_EQ(item->GetDescription(), "");
    EXPECT_EQ(item->GetUnitOfMeasure(), "");
}

TEST_F(ConfigurationSection, an_absent_attribute_reads_as_empty_text) {
    SetText("<ROOT_ANALYZER><S><INFO_ITEM name='n'/></S></ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    const ItemInfoElement* item = m_section.GetItem("n");
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->GetType(), "");
    EXPECT_EQ(item->GetValue(), "");
    EXPECT_EQ(item->GetDescription(), "");
    EXPECT_EQ(item->GetUnitOfMeasure(), "");
}

TEST_F(ConfigurationSection, without_items_is_read_and_holds_no_key) {
    SetText("<ROOT_ANALYZER><S></S></ROOT_ANALYZER>");
    EXPECT_TRUE(m_section.GetXML("S"));
    EXPECT_NE(m_section.GetItems(), nullptr);
    EXPECT_EQ(m_section.GetItem("A"), nullptr);
    EXPECT_EQ(m_section.GetItem(""), nullptr);
}

TEST_F(ConfigurationSection, keeps_the_first_of_two_items_with_one_name) {
    SetText(
        "<ROOT_ANALYZER><S><INFO_ITEM name='A' value='1'/><INFO_ITEM name='A' value='2'/>"
        "<INFO_ITEM name='B' value='3'/></S></ROOT_ANALYZER>");
    EXPECT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(Value("A"), "1");
    EXPECT_EQ(Value("B"), "3");
    EXPECT_THAT(m_lines.Texts(), ElementsAre("ConfigurationBase::GetXML  Unable to add item"));
}

TEST_F(ConfigurationSection, an_item_without_a_name_has_the_empty_key) {
    SetText("<ROOT_ANALYZER><S><INFO_ITEM value='1'/></S></ROOT_ANALYZER>");
    EXPECT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(Value(""), "1");
}

TEST_F(ConfigurationSection, other_elements_among_the_items_are_passed_over) {
    SetText(
        "<ROOT_ANALYZER><S><OTHER name='A' value='1'/><INFO_ITEM name='B' value='2'/><info_item name='C'/></S>"
        "</ROOT_ANALYZER>");
    EXPECT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(m_section.GetItem("A"), nullptr);
    EXPECT_EQ(Value("B"), "2");
    EXPECT_EQ(m_section.GetItem("C"), nullptr);
}

TEST_F(ConfigurationSection, that_is_absent_reads_false_and_makes_no_container) {
    SetText("<ROOT_ANALYZER><S/></ROOT_ANALYZER>");
    EXPECT_FALSE(m_section.GetXML("s"));
    EXPECT_EQ(m_section.GetItems(), nullptr);
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(ConfigurationSection, that_is_absent_leaves_the_items_read_before) {
    SetText("<ROOT_ANALYZER><S><INFO_ITEM name='A' value='1'/></S></ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    EXPECT_FALSE(m_section.GetXML("OTHER"));
    EXPECT_EQ(Value("A"), "1");
}

TEST_F(ConfigurationSection, a_second_read_replaces_all_items) {
    SetText(
        "<ROOT_ANALYZER><S><INFO_ITEM name='A' value='1'/></S><T><INFO_ITEM name='B' value='2'/></T>"
        "</ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    ASSERT_TRUE(m_section.GetXML("T"));
    EXPECT_EQ(m_section.GetItem("A"), nullptr);
    EXPECT_EQ(Value("B"), "2");
}

TEST_F(ConfigurationSection, reading_leaves_the_position_on_the_section) {
    SetText("<ROOT_ANALYZER><S><INFO_ITEM name='A'/></S><T/></ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(m_document.GetTagName(), "S");
    EXPECT_TRUE(m_document.FindElement("T"));
}

TEST_F(ConfigurationSection, replaced_items_are_the_ones_asked) {
    auto items = std::make_unique<ItemInfoContainer>();
    items->AddItem(std::make_unique<ItemInfoElement>(Item("A", "1")));
    m_section.SetItems(std::move(items));
    EXPECT_EQ(Value("A"), "1");
}

TEST_F(ConfigurationSection, a_missing_value_takes_the_fallback) {
    EXPECT_EQ(m_section.GetValueOr("A", "fallback"), "fallback");
    SetText("<ROOT_ANALYZER><S><INFO_ITEM name='A' value='1'/></S></ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(m_section.GetValueOr("A", "fallback"), "1");
    EXPECT_EQ(m_section.GetValueOr("B", "fallback"), "fallback");
}

TEST_F(ConfigurationSection, a_required_value_is_the_value) {
    SetText("<ROOT_ANALYZER><S><INFO_ITEM name='A' value=' 1 '/></S></ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(m_section.RequireValue("A"), " 1 ");
}

using ConfigurationSectionDeathTest = ConfigurationSection;

TEST_F(ConfigurationSectionDeathTest, a_missing_required_key_ends_the_process) {
    SetText("<ROOT_ANALYZER><LOGGING_INFO/></ROOT_ANALYZER>");
    m_section.SetSource("/etc/analyzer.conf.xml");
    ASSERT_TRUE(m_section.GetXML("LOGGING_INFO"));
    EXPECT_DEATH(m_section.RequireValue("LoggingLevel"),
                 "^/etc/analyzer\\.conf\\.xml: section LOGGING_INFO has no key LoggingLevel\n");
    EXPECT_DEATH(m_section.GetItems()->RequireValue("LoggingLevel"),
                 "^/etc/analyzer\\.conf\\.xml: section LOGGING_INFO has no key LoggingLevel\n");
}

TEST_F(ConfigurationSectionDeathTest, a_required_key_before_the_first_read_ends_the_process) {
    EXPECT_DEATH(m_section.RequireValue("LoggingLevel"), "section  has no key LoggingLevel\n");
}

TEST_F(ConfigurationSection, writing_adds_an_item_of_a_new_name) {
    SetText(TwoItems);
    ItemInfoElement item = Item("D", "4");
    EXPECT_TRUE(m_section.SetXML("SYSTEM_INFO", &item));
    EXPECT_EQ(m_document.GetDocumentText(),
              "<ROOT_ANALYZER>\n"
              "<SYSTEM_INFO>\n"
              "<INFO_ITEM value=\"1\" name=\"A\"/>\n"
              "<INFO_ITEM unitOfMeasure=\"x\" value=\"2\" name=\"B\"/>\n"
              "<INFO_ITEM name=\"C\" value=\"3\"/>\n"
              "<INFO_ITEM name=\"D\" type=\"text\" value=\"4\" description=\"about it\" unitOfMeasure=\"N/A\"/>\n"
              "</SYSTEM_INFO>\n"
              "</ROOT_ANALYZER>\n");
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(ConfigurationSection, writing_replaces_an_item_of_that_name) {
    SetText(TwoItems);
    ItemInfoElement item = Item("B", "4");
    EXPECT_TRUE(m_section.SetXML("SYSTEM_INFO", &item));
    EXPECT_EQ(m_document.GetDocumentText(),
              "<ROOT_ANALYZER>\n"
              "<SYSTEM_INFO>\n"
              "<INFO_ITEM value=\"1\" name=\"A\"/>\n"
              "<INFO_ITEM name=\"B\" type=\"text\" value=\"4\" description=\"about it\" unitOfMeasure=\"N/A\"/>\n"
              "<INFO_ITEM name=\"C\" value=\"3\"/>\n"
              "</SYSTEM_INFO>\n"
              "</ROOT_ANALYZER>\n");
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(ConfigurationSection, replacing_the_first_item_puts_it_last) {
    SetText(TwoItems);
    ItemInfoElement item = Item("A", "4");
    EXPECT_TRUE(m_section.SetXML("SYSTEM_INFO", &item));
    EXPECT_EQ(m_document.GetDocumentText(),
              "<ROOT_ANALYZER>\n"
              "<SYSTEM_INFO>\n"
              "<INFO_ITEM unitOfMeasure=\"x\" value=\"2\" name=\"B\"/>\n"
              "<INFO_ITEM name=\"C\" value=\"3\"/>\n"
              "<INFO_ITEM name=\"A\" type=\"text\" value=\"4\" description=\"about it\" unitOfMeasure=\"N/A\"/>\n"
              "</SYSTEM_INFO>\n"
              "</ROOT_ANALYZER>\n");
}

TEST_F(ConfigurationSection, a_written_item_reads_back_with_any_characters) {
    SetText("<ROOT_ANALYZER><S/></ROOT_ANALYZER>");
    ItemInfoElement item = Item("<&>", "\"it's\" 5 > 4 & 3 < 4");
    ASSERT_TRUE(m_section.SetXML("S", &item));
    m_document.ResetPosition();
    ASSERT_TRUE(m_document.FindElement("ROOT_ANALYZER"));
    ASSERT_TRUE(m_document.IntoElement());
    ASSERT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(Value("<&>"), "\"it's\" 5 > 4 & 3 < 4");
}

TEST_F(ConfigurationSection, writing_ends_on_the_root_from_any_position) {
    SetText(TwoItems);
    ASSERT_TRUE(m_document.FindElement("SYSTEM_INFO"));
    ASSERT_TRUE(m_document.IntoElement());
    ItemInfoElement item = Item("A", "4");
    ASSERT_TRUE(m_section.SetXML("SYSTEM_INFO", &item));
    EXPECT_EQ(m_document.GetTagName(), "ROOT_ANALYZER");
    EXPECT_FALSE(m_document.OutOfElement());
}

TEST_F(ConfigurationSection, writing_without_a_section_name_changes_nothing) {
    SetText(TwoItems);
    ASSERT_TRUE(m_document.FindElement("SYSTEM_INFO"));
    ASSERT_TRUE(m_document.IntoElement());
    ASSERT_TRUE(m_document.FindElement("INFO_ITEM"));
    ItemInfoElement item = Item("A", "4");
    EXPECT_FALSE(m_section.SetXML("", &item));
    EXPECT_THAT(m_lines.Texts(), ElementsAre("ConfigurationBase::SetXML  Invalid input arguments"));
    EXPECT_EQ(m_document.GetDocumentText(), TwoItems);
    EXPECT_EQ(m_document.GetAttribute("name"), "A");
}

TEST_F(ConfigurationSection, writing_no_item_is_refused) {
    SetText(TwoItems);
    EXPECT_FALSE(m_section.SetXML("SYSTEM_INFO", nullptr));
    EXPECT_THAT(m_lines.Texts(), ElementsAre("ConfigurationBase::SetXML  Invalid input arguments"));
}

TEST_F(ConfigurationSection, writing_without_a_document_is_refused) {
    ItemInfoElement item = Item("A", "4");
    EXPECT_FALSE(m_section.SetXML("SYSTEM_INFO", &item));
    EXPECT_THAT(m_lines.Texts(), ElementsAre("ConfigurationBase::SetXML  Invalid input arguments"));
}

TEST_F(ConfigurationSection, writing_into_another_root_is_refused) {
    SetText("<ROOT_USER><USER_CONFIG_INFO/></ROOT_USER>");
    ItemInfoElement item = Item("A", "4");
    EXPECT_FALSE(m_section.SetXML("USER_CONFIG_INFO", &item));
    EXPECT_THAT(m_lines.Texts(), ElementsAre("ConfigurationBase::SetXML  Unable to find element \"ROOT_ANALYZER\""));
    EXPECT_EQ(m_document.GetDocumentText(), "<ROOT_USER><USER_CONFIG_INFO/></ROOT_USER>");
}

TEST_F(ConfigurationSection, writing_into_an_absent_section_logs_one_double_quote) {
    SetText(TwoItems);
    ItemInfoElement item = Item("A", "4");
    EXPECT_FALSE(m_section.SetXML("ABSENT_INFO", &item));
    EXPECT_THAT(m_lines.Texts(), ElementsAre("\""));
    EXPECT_EQ(m_document.GetDocumentText(), TwoItems);
    EXPECT_EQ(m_document.GetTagName(), "ROOT_ANALYZER");
    EXPECT_FALSE(m_document.OutOfElement());
}

TEST_F(ConfigurationSection, values_convert_to_integers_as_the_reader_asks) {
    SetText(
        "<ROOT_ANALYZER><S><INFO_ITEM name='hex' value='0x10'/><INFO_ITEM name='ten' value='10'/>"
        "<INFO_ITEM name='blanks' value=' 010 '/><INFO_ITEM name='x' value='x'/>"
        "<INFO_ITEM name='letters' value='12ab'/><INFO_ITEM name='empty' value=''/></S></ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    EXPECT_EQ(m_section.RequireValue("hex").ToInteger(), 16);
    EXPECT_EQ(m_section.RequireValue("ten").ToInteger(), 10);
    EXPECT_EQ(m_section.RequireValue("blanks").ToInteger(), 10);
    EXPECT_EQ(m_section.RequireValue("x").ToInteger(), 0);
    EXPECT_EQ(m_section.RequireValue("letters").ToInteger(), 12);
    EXPECT_EQ(m_section.RequireValue("empty").ToInteger(), 0);
    EXPECT_EQ(m_section.RequireValue("hex").ToUnsigned(), 16U);
}

TEST_F(ConfigurationSection, values_convert_to_flags_as_the_reader_asks) {
    SetText(
        "<ROOT_ANALYZER><S><INFO_ITEM name='yes' value=' YES '/><INFO_ITEM name='two' value='2'/></S>"
        "</ROOT_ANALYZER>");
    ASSERT_TRUE(m_section.GetXML("S"));
    EXPECT_TRUE(m_section.RequireValue("yes").ToBool());
    EXPECT_FALSE(m_section.RequireValue("two").ToBool());
}

TEST(XMLData, borrows_the_document_that_it_is_given) {
    XmlDocument first;
    XmlDocument second;
    XMLData data;
    EXPECT_EQ(data.GetDocument(), nullptr);
    data.SetDocument(&first);
    data.SetDocument(&second);
    EXPECT_EQ(data.GetDocument(), &second);
}
