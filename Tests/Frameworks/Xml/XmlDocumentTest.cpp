#include <gtest/gtest.h>

#include "Frameworks/Xml/XmlDocument.h"

namespace {

TEST(XmlDocument, a_new_document_is_empty_and_refuses_everything_but_adding) {
    XmlDocument document;
    EXPECT_FALSE(document.IsWellFormed());
    EXPECT_FALSE(document.FindElement("a"));
    EXPECT_FALSE(document.IntoElement());
    EXPECT_FALSE(document.OutOfElement());
    EXPECT_FALSE(document.RemoveElement());
    EXPECT_FALSE(document.SetAttribute("a", "b"));
    EXPECT_EQ(document.GetAttribute("a"), "");
    EXPECT_EQ(document.GetDocumentText(), "");
    EXPECT_EQ(document.GetResult(), "");
}

TEST(XmlDocument, empty_text_is_not_well_formed_and_nothing_is_reported) {
    XmlDocument document;
    EXPECT_FALSE(document.SetDocumentText(""));
    EXPECT_FALSE(document.FindElement("a"));
    EXPECT_EQ(document.GetResult(), "");
}

TEST(XmlDocument, null_text_counts_as_empty) {
    XmlDocument document;
    document.SetDocumentText("<a/>");
    EXPECT_FALSE(document.SetDocumentText(nullptr));
    EXPECT_EQ(document.GetDocumentText(), "");
}

TEST(XmlDocument, one_empty_root_can_be_entered_and_holds_nothing) {
    XmlDocument document;
    EXPECT_TRUE(document.SetDocumentText("<a/>"));
    EXPECT_TRUE(document.IsWellFormed());
    EXPECT_TRUE(document.FindElement("a"));
    EXPECT_TRUE(document.IntoElement());
    EXPECT_FALSE(document.FindElement("a"));
    EXPECT_FALSE(document.FindElement());
}

TEST(XmlDocument, finding_a_name_again_walks_the_siblings_and_stays_on_the_last) {
    XmlDocument document;
    document.SetDocumentText("<r><b n=\"1\"/><c/><b n=\"2\"/><c/></r>");
    document.FindElement("r");
    document.IntoElement();
    ASSERT_TRUE(document.FindElement("b"));
    ASSERT_TRUE(document.FindElement("b"));
    EXPECT_EQ(document.GetAttribute("n"), "2");
    EXPECT_FALSE(document.FindElement("b"));
    EXPECT_EQ(document.GetAttribute("n"), "2");
}

TEST(XmlDocument, names_compare_by_byte_and_whole) {
    XmlDocument document;
    document.SetDocumentText("<r><Item/><item1/><item/></r>");
    document.FindElement("r");
    document.IntoElement();
    ASSERT_TRUE(document.FindElement("item"));
    EXPECT_EQ(document.GetTagName(), "item");
    EXPECT_FALSE(document.FindElement());
    document.ResetMainPosition();
    EXPECT_FALSE(document.FindElement("item/"));
    EXPECT_FALSE(document.FindElement(""));
}

TEST(XmlDocument, gives_the_start_tag_of_the_current_element) {
    XmlDocument document;
    document.SetDocumentText("<r a='1'>text<b/></r>");
    EXPECT_EQ(document.GetStartTag(), "");
    document.FindElement("r");
    EXPECT_EQ(document.GetStartTag(), "<r a='1'>");
    document.IntoElement();
    EXPECT_EQ(document.GetStartTag(), "");
    document.FindElement("b");
    EXPECT_EQ(document.GetStartTag(), "<b/>");
}

TEST(XmlDocument, leaving_at_the_top_is_refused) {
    XmlDocument document;
    document.SetDocumentText("<a/>");
    EXPECT_FALSE(document.OutOfElement());
    document.FindElement("a");
    EXPECT_FALSE(document.OutOfElement());
    EXPECT_EQ(document.GetTagName(), "a");
}

TEST(XmlDocument, finding_continues_after_an_element_that_was_left) {
    XmlDocument document;
    document.SetDocumentText("<r><b n=\"1\"><x/></b><b n=\"2\"/></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("b");
    ASSERT_TRUE(document.IntoElement());
    ASSERT_TRUE(document.OutOfElement());
    EXPECT_EQ(document.GetAttribute("n"), "1");
    ASSERT_TRUE(document.FindElement("b"));
    EXPECT_EQ(document.GetAttribute("n"), "2");
}

TEST(XmlDocument, entering_again_returns_to_the_remembered_child) {
    XmlDocument document;
    document.SetDocumentText("<r><a/><b/></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("a");
    document.OutOfElement();
    document.IntoElement();
    EXPECT_EQ(document.GetTagName(), "a");
    EXPECT_TRUE(document.FindElement("b"));
}

TEST(XmlDocument, a_find_forgets_the_remembered_child) {
    XmlDocument document;
    document.SetDocumentText("<r><s><a/></s><s><a/></s></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("s");
    document.IntoElement();
    document.FindElement("a");
    document.OutOfElement();
    document.FindElement("s");
    document.IntoElement();
    EXPECT_EQ(document.GetTagName(), "");
}

TEST(XmlDocument, entering_without_a_current_element_is_refused) {
    XmlDocument document;
    document.SetDocumentText("<a/>");
    EXPECT_FALSE(document.IntoElement());
}

TEST(XmlDocument, resetting_the_position_goes_above_the_root) {
    XmlDocument document;
    document.SetDocumentText("<r><a/></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("a");
    document.ResetPosition();
    EXPECT_EQ(document.GetTagName(), "");
    EXPECT_TRUE(document.FindElement("r"));
}

TEST(XmlDocument, resetting_the_main_position_starts_over_within_the_parent) {
    XmlDocument document;
    document.SetDocumentText("<r><a n=\"1\"/><a n=\"2\"/></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("a");
    document.FindElement("a");
    document.ResetMainPosition();
    EXPECT_EQ(document.GetTagName(), "");
    ASSERT_TRUE(document.FindElement("a"));
    EXPECT_EQ(document.GetAttribute("n"), "1");
}

TEST(XmlDocument, attributes_are_read_in_every_form_they_are_written_in) {
    XmlDocument document;
    document.SetDocumentText("<a b=\"1\" c='2' d = \"3\" e=4 f g=\"\" h=\"x>y\" i=\"p='q'\"j=k\n l=\"m\"/>");
    document.FindElement("a");
    EXPECT_EQ(document.GetAttribute("b"), "1");
    EXPECT_EQ(document.GetAttribute("c"), "2");
    EXPECT_EQ(document.GetAttribute("d"), "3");
    EXPECT_EQ(document.GetAttribute("e"), "4");
    EXPECT_EQ(document.GetAttribute("f"), "");
    EXPECT_EQ(document.GetAttribute("g"), "");
    EXPECT_EQ(document.GetAttribute("h"), "x>y");
    EXPECT_EQ(document.GetAttribute("i"), "p='q'");
    EXPECT_EQ(document.GetAttribute("j"), "k");
    EXPECT_EQ(document.GetAttribute("l"), "m");
    EXPECT_EQ(document.GetAttribute("q"), "");
    EXPECT_EQ(document.GetAttribute("B"), "");
    EXPECT_EQ(document.GetAttribute(nullptr), "");
}

TEST(XmlDocument, every_one_of_many_attributes_is_read_in_any_order) {
    XmlDocument document;
    document.SetDocumentText(
        "<a n1='1' n2='2' n3='3' n4='4' n5='5' n6='6' n7='7' n8='8' n9='9' n10='&lt;' n2='later'/>");
    document.FindElement();
    EXPECT_EQ(document.GetAttribute("n10"), "<");
    EXPECT_EQ(document.GetAttribute("n8"), "8");
    EXPECT_EQ(document.GetAttribute("n9"), "9");
    EXPECT_EQ(document.GetAttribute("n2"), "2");
    EXPECT_EQ(document.GetAttribute("n11"), "");
}

TEST(XmlDocument, what_is_read_after_a_change_is_what_was_written) {
    XmlDocument document;
    document.SetDocumentText("<r><a x=\"1\" y=\"2\"/></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("a");
    EXPECT_EQ(document.GetAttribute("y"), "2");
    document.SetAttribute("x", "a longer text than before");
    EXPECT_EQ(document.GetAttribute("y"), "2");
    EXPECT_EQ(document.GetAttribute("x"), "a longer text than before");
    document.RemoveElement();
    document.AddElement("b");
    EXPECT_EQ(document.GetAttribute("x"), "");
    document.SetDocumentText("<r><c x=\"3\"/></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("c");
    EXPECT_EQ(document.GetAttribute("x"), "3");
}

TEST(XmlDocument, a_quote_in_an_attribute_value_reads_back) {
    XmlDocument document;
    document.SetDocumentText("<a/>");
    document.FindElement("a");
    ASSERT_TRUE(document.SetAttribute("b", "say \"it's\" <1> & 2"));
    EXPECT_EQ(document.GetAttribute("b"), "say \"it's\" <1> & 2");
    EXPECT_EQ(document.GetDocumentText(), "<a b=\"say &quot;it&apos;s&quot; &lt;1&gt; &amp; 2\"/>");
}

TEST(XmlDocument, setting_an_attribute_twice_leaves_one) {
    XmlDocument document;
    document.SetDocumentText("<r><a/><z/></r>");
    document.FindElement("r");
    document.IntoElement();
    document.FindElement("a");
    ASSERT_TRUE(document.SetAttribute("n", "1"));
    ASSERT_TRUE(document.SetAttribute("n", "three"));
    EXPECT_EQ(document.GetDocumentText(), "<r><a n=\"three\"/><z/></r>");
    EXPECT_TRUE(document.FindElement("z"));
}

TEST(XmlDocument, new_attributes_keep_the_order_of_their_setting) {
    XmlDocument document;
    document.SetDocumentText("<a x='0' />");
    document.FindElement("a");
    document.SetAttribute("c", "1");
    document.SetAttribute("b", "2");
    document.SetAttribute("x", "3");
    EXPECT_EQ(document.GetDocumentText(), "<a x=\"3\" c=\"1\" b=\"2\" />");
}

TEST(XmlDocument, odd_attributes_are_set_without_breaking_their_neighbours) {
    XmlDocument document;
    document.SetDocumentText("<a f g=h\"i j\"k l = >t</a>");
    document.FindElement("a");
    ASSERT_TRUE(document.SetAttribute("f", "1"));
    ASSERT_TRUE(document.SetAttribute("g", "2"));
    ASSERT_TRUE(document.SetAttribute("n", "3"));
    ASSERT_TRUE(document.SetAttribute("l", "4"));
    EXPECT_EQ(document.GetDocumentText(), "<a f=\"1\" g=\"2\" l =\"4\" n=\"3\" >t</a>");
}

TEST(XmlDocument, names_that_would_break_the_tag_are_refused) {
    XmlDocument document;
    document.SetDocumentText("<a/>");
    document.FindElement("a");
    for (const char* name : {"", "b c", "b=", "b/", "b>", "b\"", "b'", "b<", "b\n"}) {
        EXPECT_FALSE(document.SetAttribute(name, "1")) << name;
        EXPECT_FALSE(document.AddElement(name)) << name;
    }
    EXPECT_FALSE(document.AddElement("1"));
    EXPECT_FALSE(document.AddElement(nullptr));
    EXPECT_FALSE(document.SetAttribute(nullptr, "1"));
    EXPECT_EQ(document.GetDocumentText(), "<a/>");
}

}  // namespace
