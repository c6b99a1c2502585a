#include <gtest/gtest.h>

#include "Frameworks/Xml/XmlReport.h"

namespace {

std::string Added(const char* key, const XmlReportDetails& details = {}) {
    std::string result;
    AddXmlReport(result, key, details);
    return result;
}

TEST(XmlReport, each_report_is_one_empty_element) {
    EXPECT_EQ(Added("bom"), "<bom/>");
    EXPECT_EQ(Added("file_error", {.msg = "No such file or directory"}),
              "<file_error msg=\"No such file or directory\"/>");
    EXPECT_EQ(Added("unended_start_tag", {.tagname = "b", .offset = 3, .offset2 = 4'294'967'295}),
              "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"4294967295\"/>");
}

TEST(XmlReport, reports_follow_one_another) {
    std::string result;
    AddXmlReport(result, "bom");
    AddXmlReport(result, "read", {.encoding = "UTF-8", .length = 4});
    AddXmlReport(result, "nulls_removed", {.count = 2});
    EXPECT_EQ(result, "<bom/><read encoding=\"UTF-8\" length=\"4\"/><nulls_removed count=\"2\"/>");
}

TEST(XmlReport, a_text_of_999_characters_takes_one_more_and_one_of_1000_none) {
    const std::string filler = "<!--" + std::string(992, '-') + "-->";
    std::string result = filler;
    AddXmlReport(result, "bom");
    EXPECT_EQ(result, filler + "<bom/>");
    AddXmlReport(result, "bom");
    EXPECT_EQ(result, filler + "<bom/>");
    std::string full = filler + " ";
    AddXmlReport(full, "bom");
    EXPECT_EQ(full, filler + " ");
}

TEST(XmlReport, every_key_has_its_display_text) {
    const struct {
        const char* report;
        const char* text;
    } cases[] = {
        {"<root_has_sibling/>", "root element has sibling"},
        {"<no_root_element/>", "no root element"},
        {"<lone_end_tag tagname='a' offset='7'/>", "lone end tag 'a' at offset 7"},
        {"<unended_start_tag tagname='a' offset='7' offset2='9'/>",
         "start tag 'a' at offset 7 expecting end tag at offset 9"},
        {"<first_tag_syntax offset='7'/>", "tag syntax error at offset 7 expecting tag name / ! or ?"},
        {"<exclamation_tag_syntax offset='7'/>", "tag syntax error at offset 7 expecting 'DOCTYPE' [ or -"},
        {"<doctype_tag_syntax offset='7'/>", "tag syntax error at offset 7 expecting markup declaration"},
        {"<comment_tag_syntax offset='7'/>", "tag syntax error at offset 7 expecting - to begin comment"},
        {"<cdata_section_syntax offset='7'/>", "tag syntax error at offset 7 expecting 'CDATA'"},
        {"<unterminated_tag_syntax type='tag' offset='7'/>", "unterminated tag at offset 7"},
        {"<file_error msg='Permission denied'/>", "Permission denied"},
        {"<bom/>", "BOM +"},
        {"<read encoding='UTF-8' length='7'/>", "UTF-8 length 7"},
        {"<write encoding='UTF-8' length='7'/>", "UTF-8 length 7"},
        {"<converted_to encoding='UTF-8' length='7'/>", "to UTF-8 length 7"},
        {"<converted_from encoding='UTF-8' length='7'/>", "UTF-8 length 7 to"},
        {"<nulls_removed count='7'/>", "removed 7 nulls"},
        {"<conversion_loss/>", "(chars lost in conversion!)"},
        {"<utf8_detection/>", "(used UTF-8 detection)"},
        {"<endian_swap/>", "endian swap"},
        {"<truncation_error encoding='Shift_JIS'/>", "encoding Shift_JIS adjustment error"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(XmlReportText(each.report), each.text);
    }
}

TEST(XmlReport, the_texts_are_joined_by_a_blank) {
    EXPECT_EQ(XmlReportText("<bom/><read encoding='UTF-8' length='7'/><no_root_element/>"),
              "BOM + UTF-8 length 7 no root element");
}

TEST(XmlReport, nothing_to_report_gives_an_empty_text) { EXPECT_EQ(XmlReportText(""), ""); }

}  // namespace
