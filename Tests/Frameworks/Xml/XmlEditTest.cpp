#include <gtest/gtest.h>

#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Frameworks/Xml/XmlInvariants.h"

namespace {

// A document with the cursor inside its root.
class XmlEdit : public testing::Test {
protected:
    void Inside(const char* text) {
        m_document.SetDocumentText(text);
        ASSERT_TRUE(m_document.FindElement());
        ASSERT_TRUE(m_document.IntoElement());
    }

    void TearDown() override {
        EXPECT_EQ(CheckIndex(m_document), "");
        XmlDocument fresh;
        fresh.SetDocumentText(m_document.GetDocumentText().c_str());
        EXPECT_EQ(CompareIndex(m_document, fresh), "");
    }

    const std::string& Text() const { return m_document.GetDocumentText(); }

    XmlDocument m_document;
};

TEST_F(XmlEdit, the_first_element_of_a_new_document_becomes_its_root) {
    ASSERT_TRUE(m_document.AddElement("r"));
    EXPECT_EQ(Text(), "<r/>\n");
    EXPECT_TRUE(m_document.IsWellFormed());
    EXPECT_EQ(m_document.GetTagName(), "r");
}

TEST_F(XmlEdit, a_root_follows_the_prolog) {
    m_document.SetDocumentText("<?xml version=\"1.0\"?>\n");
    ASSERT_TRUE(m_document.AddElement("r"));
    EXPECT_EQ(Text(), "<?xml version=\"1.0\"?>\n<r/>\n");
}

TEST_F(XmlEdit, a_second_root_makes_the_document_ill_formed) {
    m_document.SetDocumentText("<r/>");
    m_document.FindElement("r");
    ASSERT_TRUE(m_document.AddElement("s"));
    EXPECT_EQ(Text(), "<r/><s/>\n");
    EXPECT_FALSE(m_document.IsWellFormed());
}

TEST_F(XmlEdit, without_a_current_element_a_new_one_is_last) {
    Inside("<r>\n<a/>\n</r>");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r>\n<a/>\n<b/>\n</r>");
    EXPECT_FALSE(m_document.FindElement());
}

TEST_F(XmlEdit, a_new_element_follows_the_current_one_and_its_white_space) {
    Inside("<r>\n  <a/>\n  <c/>\n</r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r>\n  <a/>\n  <b/>\n<c/>\n</r>");
    EXPECT_EQ(m_document.GetTagName(), "b");
    EXPECT_TRUE(m_document.FindElement("c"));
}

TEST_F(XmlEdit, white_space_in_front_of_text_does_not_count) {
    Inside("<r><a/> text<c/></r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r><a/><b/>\n text<c/></r>");
}

TEST_F(XmlEdit, white_space_at_the_end_of_the_text_does_not_count) {
    m_document.SetDocumentText("<a/>\n");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<a/><b/>\n\n");
}

TEST_F(XmlEdit, an_empty_parent_is_opened) {
    Inside("<r a=\"1\"/>");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r a=\"1\">\n<b/>\n</r>");
    ASSERT_TRUE(m_document.OutOfElement());
    EXPECT_EQ(m_document.GetAttribute("a"), "1");
}

TEST_F(XmlEdit, an_empty_parent_with_a_blank_keeps_the_blank) {
    Inside("<r />");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r >\n<b/>\n</r>");
}

TEST_F(XmlEdit, an_empty_parent_with_a_second_slash_is_opened) {
    Inside("<r a=b//>");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r a=b/ >\n<b/>\n</r>");
    m_document.OutOfElement();
    EXPECT_EQ(m_document.GetAttribute("a"), "b/");
}

TEST_F(XmlEdit, a_parent_with_nothing_between_its_tags_gets_a_line_feed_in_front) {
    Inside("<r></r>");
    ASSERT_TRUE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r>\n<b/>\n</r>");
}

TEST_F(XmlEdit, data_is_escaped_in_text_mode) {
    Inside("<r></r>");
    ASSERT_TRUE(m_document.AddElement("b", "1 < 2 & \"a\" > 'b'"));
    EXPECT_EQ(Text(), "<r>\n<b>1 &lt; 2 &amp; \"a\" &gt; 'b'</b>\n</r>");
    EXPECT_EQ(m_document.GetData(), "1 < 2 & \"a\" > 'b'");
}

TEST_F(XmlEdit, empty_data_makes_an_empty_element) {
    Inside("<r></r>");
    ASSERT_TRUE(m_document.AddElement("b", ""));
    EXPECT_EQ(Text(), "<r>\n<b/>\n</r>");
}

TEST_F(XmlEdit, data_with_a_section_terminator_reads_back_whole) {
    Inside("<r></r>");
    ASSERT_TRUE(m_document.AddElement("b", "x]]>y]]>", XmlDocument::CDataFlag));
    EXPECT_EQ(Text(), "<r>\n<b><![CDATA[x]]]]><![CDATA[>y]]]]><![CDATA[>]]></b>\n</r>");
    EXPECT_EQ(m_document.GetData(), "x]]>y]]>");
}

TEST_F(XmlEdit, no_line_feeds_are_added_when_they_are_not_wanted) {
    Inside("<r/>");
    ASSERT_TRUE(m_document.AddElement("a", nullptr, XmlDocument::NoLineFeedFlag));
    ASSERT_TRUE(m_document.AddElement("b", "1", XmlDocument::NoLineFeedFlag));
    EXPECT_EQ(Text(), "<r><a/><b>1</b></r>");
}

TEST_F(XmlEdit, no_line_feed_is_put_between_tags_with_the_flag) {
    Inside("<r></r>");
    ASSERT_TRUE(m_document.AddElement("a", nullptr, XmlDocument::NoLineFeedFlag));
    EXPECT_EQ(Text(), "<r><a/></r>");
}

TEST_F(XmlEdit, a_blank_is_put_before_the_slash_with_the_flag) {
    Inside("<r></r>");
    ASSERT_TRUE(m_document.AddElement("a", nullptr, XmlDocument::BlankFlag));
    EXPECT_EQ(Text(), "<r>\n<a />\n</r>");
}

TEST_F(XmlEdit, an_element_without_end_tag_makes_the_document_ill_formed) {
    Inside("<r></r>");
    ASSERT_TRUE(m_document.AddElement("a", nullptr, XmlDocument::NoEndTagFlag));
    EXPECT_EQ(Text(), "<r>\n<a>\n</r>");
    EXPECT_FALSE(m_document.IsWellFormed());
}

TEST_F(XmlEdit, an_element_without_end_tag_refuses_data) {
    Inside("<r></r>");
    EXPECT_FALSE(m_document.AddElement("a", "1", XmlDocument::NoEndTagFlag));
    EXPECT_EQ(Text(), "<r></r>");
}

TEST_F(XmlEdit, nothing_is_added_to_an_element_without_end_tag) {
    Inside("<r></r>");
    m_document.AddElement("a", nullptr, XmlDocument::NoEndTagFlag);
    m_document.IntoElement();
    EXPECT_FALSE(m_document.AddElement("b"));
    EXPECT_EQ(Text(), "<r>\n<a>\n</r>");
}

TEST_F(XmlEdit, the_first_place_is_in_front_of_all_siblings) {
    Inside("<r>\n<a/>\n<b/>\n</r>");
    m_document.FindElement("b");
    ASSERT_TRUE(m_document.AddElement("c", nullptr, XmlDocument::FirstPlaceFlag));
    EXPECT_EQ(Text(), "<r>\n<c/>\n<a/>\n<b/>\n</r>");
    EXPECT_TRUE(m_document.FindElement("a"));
}

TEST_F(XmlEdit, before_the_current_element) {
    Inside("<r>\n<a/>\n<b/>\n</r>");
    m_document.FindElement("b");
    ASSERT_TRUE(m_document.AddElement("c", nullptr, XmlDocument::BeforeFlag));
    EXPECT_EQ(Text(), "<r>\n<a/>\n<c/>\n<b/>\n</r>");
    EXPECT_TRUE(m_document.FindElement("b"));
}

TEST_F(XmlEdit, before_the_first_child_makes_a_new_first_child) {
    Inside("<r><a/></r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.AddElement("c", nullptr, XmlDocument::BeforeFlag));
    m_document.ResetMainPosition();
    m_document.FindElement();
    EXPECT_EQ(m_document.GetTagName(), "c");
}

TEST_F(XmlEdit, a_child_of_the_current_element) {
    Inside("<r><a/></r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.AddElement("c", nullptr, XmlDocument::ChildFlag));
    EXPECT_EQ(Text(), "<r><a>\n<c/>\n</a></r>");
    EXPECT_EQ(m_document.GetTagName(), "c");
    ASSERT_TRUE(m_document.OutOfElement());
    EXPECT_EQ(m_document.GetTagName(), "a");
}

TEST_F(XmlEdit, a_child_needs_a_current_element) {
    Inside("<r></r>");
    EXPECT_FALSE(m_document.AddElement("c", nullptr, XmlDocument::ChildFlag));
    EXPECT_EQ(Text(), "<r></r>");
}

TEST_F(XmlEdit, removing_the_only_child_leaves_the_tags_and_an_empty_interior) {
    Inside("<r><a/>\n</r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.RemoveElement());
    EXPECT_EQ(Text(), "<r></r>");
    EXPECT_FALSE(m_document.FindElement());
}

TEST_F(XmlEdit, removing_includes_the_following_white_space) {
    Inside("<r>\n  <a/>\n  <b/>\n</r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.RemoveElement());
    EXPECT_EQ(Text(), "<r>\n  <b/>\n</r>");
}

TEST_F(XmlEdit, removing_leaves_white_space_in_front_of_text) {
    Inside("<r><a/> text</r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.RemoveElement());
    EXPECT_EQ(Text(), "<r> text</r>");
}

TEST_F(XmlEdit, removing_makes_the_previous_sibling_current) {
    Inside("<r><a/><b/><c/></r>");
    m_document.FindElement("b");
    ASSERT_TRUE(m_document.RemoveElement());
    EXPECT_EQ(m_document.GetTagName(), "a");
    EXPECT_TRUE(m_document.FindElement("c"));
}

TEST_F(XmlEdit, removing_the_first_child_leaves_no_current_element) {
    Inside("<r><a/><b/><c/></r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.RemoveElement());
    EXPECT_EQ(m_document.GetTagName(), "");
    EXPECT_TRUE(m_document.FindElement("b"));
}

TEST_F(XmlEdit, adding_after_removing_takes_the_old_place) {
    Inside("<r>\n<a/>\n<b/>\n<c/>\n</r>");
    m_document.FindElement("b");
    m_document.RemoveElement();
    ASSERT_TRUE(m_document.AddElement("n"));
    EXPECT_EQ(Text(), "<r>\n<a/>\n<n/>\n<c/>\n</r>");
}

TEST_F(XmlEdit, adding_after_removing_the_first_child_appends) {
    Inside("<r>\n<a/>\n<b/>\n</r>");
    m_document.FindElement("a");
    m_document.RemoveElement();
    ASSERT_TRUE(m_document.AddElement("n"));
    EXPECT_EQ(Text(), "<r>\n<b/>\n<n/>\n</r>");
}

TEST_F(XmlEdit, removing_takes_the_whole_subtree) {
    Inside("<r><a><b>1</b><c><d/></c></a><e/></r>");
    m_document.FindElement("a");
    ASSERT_TRUE(m_document.RemoveElement());
    EXPECT_EQ(Text(), "<r><e/></r>");
}

TEST_F(XmlEdit, removed_records_are_used_again) {
    Inside("<r><a><b/><c/></a></r>");
    m_document.FindElement("a");
    const std::uint32_t nextFree = m_document.GetIndex().NextFree();
    m_document.RemoveElement();
    for (const char* name : {"x", "y", "z"}) {
        ASSERT_TRUE(m_document.AddElement(name));
    }
    EXPECT_EQ(m_document.GetIndex().NextFree(), nextFree);
}

TEST_F(XmlEdit, removing_the_root_leaves_an_ill_formed_document) {
    m_document.SetDocumentText("<?xml version=\"1.0\"?>\n<r/>\n");
    m_document.FindElement("r");
    ASSERT_TRUE(m_document.RemoveElement());
    EXPECT_EQ(Text(), "<?xml version=\"1.0\"?>\n\n");
    EXPECT_FALSE(m_document.IsWellFormed());
}

TEST_F(XmlEdit, comments_and_instructions_stay_in_place) {
    Inside("<?p?><!-- <a/> --><r><!-- 1 --><a/><!-- 2 --><?q <a/> ?></r><!-- 3 -->");
    m_document.FindElement("a");
    m_document.SetAttribute("n", "1");
    m_document.AddElement("b");
    EXPECT_EQ(Text(), "<?p?><!-- <a/> --><r><!-- 1 --><a n=\"1\"/><b/>\n<!-- 2 --><?q <a/> ?></r><!-- 3 -->");
}

TEST_F(XmlEdit, a_start_tag_longer_than_its_field_is_changed_without_harm) {
    const std::string value(5'000'000, 'v');
    Inside(("<r><a n=\"" + value + "\"><b/></a><c/></r>").c_str());
    m_document.FindElement("a");
    EXPECT_EQ(m_document.GetAttribute("n"), value);
    ASSERT_TRUE(m_document.SetAttribute("m", "1"));
    EXPECT_EQ(m_document.GetAttribute("n").size(), value.size());
    EXPECT_EQ(m_document.GetAttribute("m"), "1");
    ASSERT_TRUE(m_document.AddElement("x", nullptr, XmlDocument::ChildFlag));
    EXPECT_EQ(CheckIndex(m_document), "");
    m_document.OutOfElement();
    ASSERT_TRUE(m_document.SetAttribute("n", "2"));
    EXPECT_EQ(Text(), "<r><a n=\"2\" m=\"1\"><b/><x/>\n</a><c/></r>");
}

TEST_F(XmlEdit, a_value_that_outgrows_the_start_tag_field_is_set) {
    Inside("<r><a/><c/></r>");
    m_document.FindElement("a");
    const std::string value(4'194'303, 'v');
    ASSERT_TRUE(m_document.SetAttribute("n", value.c_str()));
    EXPECT_EQ(m_document.GetAttribute("n"), value);
    EXPECT_TRUE(m_document.FindElement("c"));
}

TEST_F(XmlEdit, an_end_tag_longer_than_its_field_is_kept) {
    const std::string name(2000, 'n');
    Inside(("<r><" + name + "></" + name + "><c/></r>").c_str());
    ASSERT_TRUE(m_document.FindElement(name.c_str()));
    ASSERT_TRUE(m_document.AddElement("x", nullptr, XmlDocument::ChildFlag));
    EXPECT_EQ(Text(), "<r><" + name + ">\n<x/>\n</" + name + "><c/></r>");
}

TEST_F(XmlEdit, tags_that_just_fill_their_fields_are_kept) {
    for (const std::size_t length : {1022U, 1023U, 1024U}) {
        const std::string name(length - 3, 'n');
        Inside(("<r><" + name + "></" + name + "><c/></r>").c_str());
        ASSERT_TRUE(m_document.FindElement(name.c_str()));
        ASSERT_TRUE(m_document.AddElement("x", nullptr, XmlDocument::ChildFlag));
        EXPECT_EQ(Text(), "<r><" + name + ">\n<x/>\n</" + name + "><c/></r>");
    }
    for (const std::size_t length : {4'194'302U, 4'194'303U, 4'194'304U}) {
        const std::string value(length - 9, 'v');
        Inside(("<r><a n=\"" + value + "\"/><c/></r>").c_str());
        ASSERT_TRUE(m_document.FindElement("a"));
        ASSERT_TRUE(m_document.SetAttribute("n", "1"));
        EXPECT_EQ(Text(), "<r><a n=\"1\"/><c/></r>");
        ASSERT_TRUE(m_document.SetAttribute("n", value.c_str()));
        EXPECT_TRUE(Text() == "<r><a n=\"" + value + "\"/><c/></r>");
    }
}

TEST_F(XmlEdit, an_empty_parent_with_a_long_name_is_opened) {
    const std::string name(2000, 'n');
    Inside(("<" + name + "/>").c_str());
    ASSERT_TRUE(m_document.AddElement("x"));
    EXPECT_EQ(Text(), "<" + name + ">\n<x/>\n</" + name + ">");
}

TEST_F(XmlEdit, a_released_record_forgets_its_long_tags) {
    const std::string name(2000, 'n');
    Inside(("<r><" + name + "/></r>").c_str());
    m_document.FindElement(name.c_str());
    m_document.RemoveElement();
    ASSERT_TRUE(m_document.AddElement("x", "1"));
    EXPECT_EQ(Text(), "<r>\n<x>1</x>\n</r>");
}

TEST_F(XmlEdit, data_leaves_out_a_child_in_the_place_of_the_first_element) {
    m_document.SetDocumentText("<a/><b>1</b>");
    ASSERT_TRUE(m_document.FindElement("a"));
    ASSERT_TRUE(m_document.RemoveElement());
    ASSERT_TRUE(m_document.FindElement("b"));
    ASSERT_TRUE(m_document.AddElement("x", "2", XmlDocument::ChildFlag | XmlDocument::NoLineFeedFlag));
    ASSERT_TRUE(m_document.OutOfElement());
    EXPECT_EQ(m_document.GetTagName(), "b");
    EXPECT_EQ(m_document.GetData(), "1");
}

TEST_F(XmlEdit, data_joins_text_and_sections_and_leaves_out_the_children) {
    Inside("<r><a>1<b>no</b>&amp;<!-- no --><![CDATA[<&amp;>]]>2</a></r>");
    m_document.FindElement("a");
    EXPECT_EQ(m_document.GetData(), "1&<&amp;>2");
}

}  // namespace
