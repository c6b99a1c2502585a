#include <gtest/gtest.h>

#include <vector>

#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Frameworks/Xml/XmlInvariants.h"

namespace {

struct Parsed {
    bool isWellFormed;
    std::string result;
    std::string display;
    std::string fault;  // of the index
};

Parsed Parse(const std::string& text) {
    XmlDocument document;
    const bool isWellFormed = document.SetDocumentText(text.c_str());
    EXPECT_EQ(isWellFormed, document.IsWellFormed());
    return {isWellFormed, document.GetResult(), document.GetResultText(), CheckIndex(document)};
}

// The tree as text: names, children in parentheses.
std::string Tree(XmlDocument& document) {
    std::string tree;
    while (document.FindElement()) {
        tree += tree.empty() ? "" : " ";
        tree += document.GetTagName();
        document.IntoElement();
        const std::string children = Tree(document);
        document.OutOfElement();
        tree += children.empty() ? "" : "(" + children + ")";
    }
    return tree;
}

std::string TreeOf(const std::string& text) {
    XmlDocument document;
    document.SetDocumentText(text.c_str());
    EXPECT_EQ(CheckIndex(document), "");
    return Tree(document);
}

void ExpectFault(const std::string& text, const std::string& result, const std::string& display) {
    const Parsed parsed = Parse(text);
    EXPECT_FALSE(parsed.isWellFormed) << text;
    EXPECT_EQ(parsed.result, result);
    EXPECT_EQ(parsed.display, display);
    EXPECT_EQ(parsed.fault, "");
}

TEST(XmlParse, a_sound_document_has_nothing_to_report) {
    const Parsed parsed = Parse(
        "<?xml version=\"1.0\"?>\n<!DOCTYPE r [<!ELEMENT r (a)><!-- > --><!ATTLIST a b CDATA "
        "\">\">]>\n<!-- <x> --><r a='>'>t<a/><![CDATA[<y>]]></r >\n<?p <z> ?>\n");
    EXPECT_TRUE(parsed.isWellFormed);
    EXPECT_EQ(parsed.result, "");
    EXPECT_EQ(parsed.display, "");
    EXPECT_EQ(parsed.fault, "");
}

TEST(XmlParse, two_roots_are_reported_and_both_are_found) {
    ExpectFault("<a/><b/>", "<root_has_sibling/>", "root element has sibling");
    EXPECT_EQ(TreeOf("<a/><b/>"), "a b");
}

TEST(XmlParse, a_text_without_element_has_no_root) { ExpectFault("text", "<no_root_element/>", "no root element"); }

TEST(XmlParse, a_start_tag_without_end_is_reported_and_its_parent_still_closes) {
    ExpectFault("<a><b></a>", "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"6\"/>",
                "start tag 'b' at offset 3 expecting end tag at offset 6");
    EXPECT_EQ(TreeOf("<a><b></a>"), "a(b)");
}

TEST(XmlParse, what_follows_an_unended_start_tag_becomes_its_sibling) {
    EXPECT_EQ(TreeOf("<r><a/><b><c><d/></c><e/></r>"), "r(a b c(d) e)");
}

TEST(XmlParse, unended_start_tags_within_each_other_all_become_siblings) {
    EXPECT_EQ(TreeOf("<r><b><c/><d><e/><f><g/></r>"), "r(b c d e f g)");
}

TEST(XmlParse, unended_start_tags_are_reported_from_the_innermost) {
    ExpectFault("<a><b><c></a>",
                "<unended_start_tag tagname=\"c\" offset=\"6\" offset2=\"9\"/>"
                "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"9\"/>",
                "start tag 'c' at offset 6 expecting end tag at offset 9 "
                "start tag 'b' at offset 3 expecting end tag at offset 9");
}

TEST(XmlParse, a_start_tag_open_at_the_end_of_the_text_is_unended) {
    ExpectFault("<a>", "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"3\"/>",
                "start tag 'a' at offset 0 expecting end tag at offset 3");
}

TEST(XmlParse, lifting_out_of_an_unended_root_gives_the_root_siblings) {
    ExpectFault("<a><b/>", "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"7\"/><root_has_sibling/>",
                "start tag 'a' at offset 0 expecting end tag at offset 7 root element has sibling");
}

TEST(XmlParse, the_flags_say_where_the_document_is_ill_formed) {
    XmlDocument document;
    document.SetDocumentText("<r><s><a><b></a></s></r>");
    const XmlIndex& index = document.GetIndex();
    constexpr std::uint32_t HasNoEndTag = 1U << 20;
    constexpr std::uint32_t IsIllFormedInside = 1U << 21;
    constexpr std::uint32_t IsIllFormed = 1U << 23;
    const auto flagsAt = [&](std::uint32_t start) {
        std::uint32_t at = 0;
        do {
            at = NextInIndex(index, at);
        } while (index.At(at).start != start);
        return index.At(at).flags & (HasNoEndTag | IsIllFormedInside | IsIllFormed);
    };
    EXPECT_EQ(flagsAt(9), HasNoEndTag);
    EXPECT_EQ(flagsAt(6), IsIllFormed);
    EXPECT_EQ(flagsAt(3), IsIllFormedInside);
    EXPECT_EQ(flagsAt(0), IsIllFormedInside);
    EXPECT_NE(index.At(0).flags & XmlIndex::IllFormedFlag, 0U);
}

TEST(XmlParse, an_end_tag_alone_is_reported_and_there_is_no_root) {
    ExpectFault("</a>", "<lone_end_tag tagname=\"a\" offset=\"0\"/><no_root_element/>",
                "lone end tag 'a' at offset 0 no root element");
}

TEST(XmlParse, an_end_tag_that_nothing_opened_is_dropped) {
    ExpectFault("<a></b><c/></a>", "<lone_end_tag tagname=\"b\" offset=\"3\"/>", "lone end tag 'b' at offset 3");
    EXPECT_EQ(TreeOf("<a></b><c/></a>"), "a(c)");
}

TEST(XmlParse, an_end_tag_is_not_matched_by_an_element_that_has_closed) {
    EXPECT_EQ(TreeOf("<r></x><a></a></a><b/></r>"), "r(a b)");
}

TEST(XmlParse, a_digit_after_the_bracket_is_a_fault) {
    ExpectFault("<r><1></r>", "<first_tag_syntax offset=\"3\"/>",
                "tag syntax error at offset 3 expecting tag name / ! or ?");
}

TEST(XmlParse, a_fault_is_scanned_over_to_the_next_bracket) { EXPECT_EQ(TreeOf("<r>< a><b/></r>"), "r(b)"); }

TEST(XmlParse, an_unknown_declaration_is_a_fault) {
    ExpectFault("<!X><r/>", "<exclamation_tag_syntax offset=\"0\"/>",
                "tag syntax error at offset 0 expecting 'DOCTYPE' [ or -");
}

TEST(XmlParse, an_unknown_declaration_in_a_document_type_is_a_fault) {
    ExpectFault("<!DOCTYPE r [<!X>]><r/>", "<doctype_tag_syntax offset=\"13\"/>",
                "tag syntax error at offset 13 expecting markup declaration");
}

TEST(XmlParse, a_single_dash_is_a_fault) {
    ExpectFault("<!-x><r/>", "<comment_tag_syntax offset=\"0\"/>",
                "tag syntax error at offset 0 expecting - to begin comment");
}

TEST(XmlParse, a_section_that_is_not_character_data_is_a_fault) {
    ExpectFault("<![X]]><r/>", "<cdata_section_syntax offset=\"0\"/>",
                "tag syntax error at offset 0 expecting 'CDATA'");
}

TEST(XmlParse, the_end_of_the_text_in_a_token_names_the_token) {
    const struct {
        const char* text;
        const char* type;
    } cases[] = {{"<", "tag"},
                 {"<!", "tag"},
                 {"<!DOCTYPE r [<!ELEMENT", "document_type"},
                 {"<!DOCTYPE r \"", "document_type"},
                 {"<!DOCTYPE r [<!-- ", "document_type"},
                 {"<b", "start_tag"},
                 {"<b c=\">", "start_tag"},
                 {"<b c='", "start_tag"},
                 {"</r", "end_tag"},
                 {"<![CDATA[ ]>", "cdata_section"},
                 {"<![", "cdata_section"},
                 {"<?p ", "processing_instruction"},
                 {"<!-- --", "comment"},
                 {"<!-", "comment"}};
    for (const auto& each : cases) {
        ExpectFault("<r/>" + std::string(each.text),
                    "<unterminated_tag_syntax type=\"" + std::string(each.type) + "\" offset=\"4\"/>",
                    "unterminated tag at offset 4");
    }
}

TEST(XmlParse, a_fault_without_a_closing_bracket_is_unterminated) {
    ExpectFault("<r/><1", "<first_tag_syntax offset=\"4\"/><unterminated_tag_syntax type=\"tag\" offset=\"4\"/>",
                "tag syntax error at offset 4 expecting tag name / ! or ? unterminated tag at offset 4");
}

TEST(XmlParse, names_start_with_a_letter_an_underscore_a_colon_or_any_high_byte) {
    EXPECT_EQ(TreeOf("<r><A/><_b/><:c/><\xC3\xA4/><{/></r>"), "r(A _b :c \xC3\xA4 {)");
}

TEST(XmlParse, the_tag_name_ends_at_white_space_slash_or_bracket) {
    EXPECT_EQ(TreeOf("<r><a\tb='1'/><c\nd='1'/><e\rf='1'/><g h='1'/><i/><j></j\n></r>"), "r(a c e g i j)");
}

TEST(XmlParse, a_quoted_slash_does_not_empty_an_element) { EXPECT_EQ(TreeOf("<r><a b=\"/\"><c/></a></r>"), "r(a(c))"); }

TEST(XmlParse, a_bracket_or_the_other_quote_within_quotes_does_not_end_a_tag) {
    EXPECT_EQ(TreeOf("<r><a b=\"x>y>\" c=\">\"/><b d='>\"' e=\"it's >\"/><c f='\">'/></r>"), "r(a b c)");
}

TEST(XmlParse, reports_end_when_there_are_over_999_characters_of_them) {
    std::string text = "<r>";
    for (int count = 0; count < 1000; ++count) {
        text += "<1>";
    }
    XmlDocument document;
    EXPECT_FALSE(document.SetDocumentText((text + "</r>").c_str()));
    // "<first_tag_syntax offset="3"/>" and its like: the last one begins at or before 999 and is written whole.
    EXPECT_GT(document.GetResult().size(), 999U);
    EXPECT_LE(document.GetResult().size(), 999U + 33U);
    EXPECT_TRUE(document.GetResult().ends_with("\"/>"));
}

TEST(XmlParse, a_new_text_forgets_the_reports_of_the_old) {
    XmlDocument document;
    document.SetDocumentText("</a>");
    document.SetDocumentText("<a/>");
    EXPECT_EQ(document.GetResult(), "");
}

TEST(XmlParse, a_name_in_a_report_is_escaped_and_shown_unescaped) {
    const Parsed parsed = Parse("<r></a\"&lt;<b></r>");
    EXPECT_EQ(parsed.result, "<lone_end_tag tagname=\"a&quot;&amp;lt;&lt;b\" offset=\"3\"/>");
    EXPECT_EQ(parsed.display, "lone end tag 'a\"&lt;<b' at offset 3");
}

TEST(XmlParse, nesting_beyond_the_depth_field_is_indexed) {
    constexpr std::uint32_t Levels = 200'000;
    std::string text;
    for (std::uint32_t level = 0; level < Levels; ++level) {
        text += "<a>";
    }
    for (std::uint32_t level = 0; level < Levels; ++level) {
        text += "</a>";
    }
    XmlDocument document;
    EXPECT_TRUE(document.SetDocumentText(text.c_str()));
    EXPECT_EQ(CheckIndex(document), "");
    std::uint32_t depth = 0;
    while (document.FindElement("a")) {
        document.IntoElement();
        ++depth;
    }
    EXPECT_EQ(depth, Levels);
    document.ResetPosition();
    document.FindElement("a");
    EXPECT_TRUE(document.RemoveElement());
    EXPECT_EQ(document.GetDocumentText(), "");
}

TEST(XmlParse, many_open_elements_do_not_make_lone_end_tags_slow) {
    // 200000 lone end tags under 200000 open elements: the number of steps must not be the product.
    std::string text;
    for (int count = 0; count < 200'000; ++count) {
        text += "<a>";
    }
    for (int count = 0; count < 200'000; ++count) {
        text += "</b>";
    }
    const Parsed parsed = Parse(text);
    EXPECT_FALSE(parsed.isWellFormed);
    EXPECT_EQ(parsed.fault, "");
}

TEST(XmlParse, long_chains_of_unended_elements_are_lifted) {
    std::string text = "<r>";
    for (int count = 0; count < 200'000; ++count) {
        text += "<a><b/>";
    }
    XmlDocument document;
    EXPECT_FALSE(document.SetDocumentText((text + "</r>").c_str()));
    EXPECT_EQ(CheckIndex(document), "");
    document.FindElement("r");
    document.IntoElement();
    int count = 0;
    while (document.FindElement("a")) {
        ++count;
    }
    EXPECT_EQ(count, 200'000);
}

TEST(XmlParse, an_index_of_many_segments_is_walked_from_end_to_end) {
    std::string text = "<r>";
    for (int count = 0; count < 150'000; ++count) {
        text += "<a/>";
    }
    XmlDocument document;
    EXPECT_TRUE(document.SetDocumentText((text + "</r>").c_str()));
    EXPECT_EQ(document.GetIndex().NextFree(), 150'002U);
    EXPECT_EQ(CheckIndex(document), "");
}

}  // namespace
