#include <gtest/gtest.h>

#include "Frameworks/Utilities/CRC32.h"
#include "Frameworks/Xml/XmlEntities.h"
#include "Frameworks/Xml/XmlEntityTable.h"

namespace {

using namespace std::string_literals;

TEST(XmlEntities, text_mode_leaves_the_quotes) {
    EXPECT_EQ(EscapeXml("<&>\"'x", XmlEscapeMode::Text), "&lt;&amp;&gt;\"'x");
}

TEST(XmlEntities, attribute_mode_escapes_the_quotes) {
    EXPECT_EQ(EscapeXml("<&>\"'x", XmlEscapeMode::Attribute), "&lt;&amp;&gt;&quot;&apos;x");
}

TEST(XmlEntities, an_entity_in_a_text_is_escaped_again) {
    EXPECT_EQ(EscapeXml("&lt;", XmlEscapeMode::Text), "&amp;lt;");
}

TEST(XmlEntities, a_section_is_split_at_each_terminator) {
    EXPECT_EQ(XmlCDataSection("a]]>b"), "<![CDATA[a]]]]><![CDATA[>b]]>");
    EXPECT_EQ(XmlCDataSection("]]>]]>"), "<![CDATA[]]]]><![CDATA[>]]]]><![CDATA[>]]>");
    EXPECT_EQ(XmlCDataSection("a]]"), "<![CDATA[a]]]]>");
    EXPECT_EQ(XmlCDataSection(""), "<![CDATA[]]>");
}

TEST(XmlEntities, the_five_of_every_document_are_decoded) {
    EXPECT_EQ(DecodeXml("&lt;&gt;&amp;&quot;&apos;"), "<>&\"'");
}

TEST(XmlEntities, numbers_are_decoded) {
    EXPECT_EQ(DecodeXml("&#65;&#x42;&#X43;&#xE4;&#8364;&#x1F600;"), "ABC\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(XmlEntities, names_are_decoded_in_any_case) { EXPECT_EQ(DecodeXml("&LT;&Euro;&nbsp;"), "<\xE2\x82\xAC\xC2\xA0"); }

TEST(XmlEntities, of_a_pair_that_differs_in_case_the_small_letter_is_given) {
    EXPECT_EQ(DecodeXml("&delta;&Delta;"), "\xCE\xB4\xCE\xB4");
}

TEST(XmlEntities, what_is_no_entity_stays_unchanged) {
    for (const char* text : {"&", "&&", "a & b", "&;", "&lt", "&unknown;", "&#;", "&#x;", "&#12x;", "&#xG;", "&#-1;",
                             "&#0;", "&#x0;", "&#xD800;", "&#x110000;", "&#9999999;", "&lt x;"}) {
        EXPECT_EQ(DecodeXml(text), text);
    }
}

TEST(XmlEntities, the_scan_continues_after_an_ampersand_without_an_entity) {
    EXPECT_EQ(DecodeXml("&&lt;&x&gt;"), "&<&x>");
}

TEST(XmlEntities, the_semicolon_is_looked_for_among_nine_bytes) {
    EXPECT_EQ(DecodeXml("&thetasym;"), "\xCF\x91");
    EXPECT_EQ(DecodeXml("&#0000065;"), "A");
    EXPECT_EQ(DecodeXml("&#00000065;"), "&#00000065;");
}

TEST(XmlEntities, escaping_and_decoding_gives_every_byte_back) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte) {
        text += static_cast<char>(byte);
    }
    EXPECT_EQ(DecodeXml(EscapeXml(text, XmlEscapeMode::Text)), text);
    EXPECT_EQ(DecodeXml(EscapeXml(text, XmlEscapeMode::Attribute)), text);
}

// The sum of the rows after they were compared with the entities of HTML 4.
TEST(XmlEntities, the_table_has_the_characters_of_html) {
    std::string rows;
    for (const XmlTableRow& row : XmlEntityRows) {
        rows.append(row.name).append(" ").append(std::to_string(row.number)).append("\n");
    }
    EXPECT_EQ(CRC32().Compute({rows.begin(), rows.end()}), 0xBB429001U);
}

TEST(XmlEntities, the_table_has_253_names_of_which_the_first_row_wins) {
    std::size_t count = 0;
    for (const XmlTableRow& row : XmlEntityRows) {
        ++count;
        for (const XmlTableRow& first : XmlEntityRows) {
            if (first.name == row.name) {
                EXPECT_EQ(XmlEntityCode(row.name), first.number) << row.name;
                break;
            }
        }
    }
    EXPECT_EQ(count, 253U);
    EXPECT_EQ(XmlEntityCode("nosuch"), 0U);
    EXPECT_EQ(XmlEntityCode(""), 0U);
}

}  // namespace
