#include <gtest/gtest.h>

#include <bit>

#include "Frameworks/Utilities/CRC32.h"
#include "Frameworks/Xml/XmlEncoding.h"
#include "Frameworks/Xml/XmlEncodingNames.h"
#include "Frameworks/Xml/XmlEncodingTable.h"
#include "Frameworks/Xml/XmlUnicode.h"

namespace {

constexpr std::uint64_t NoLimit = SIZE_MAX;

std::string Native(std::u16string_view units) {
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

std::string ToUtf8(std::u16string_view units, std::size_t& lost) {
    std::string text;
    lost = Utf16ToUtf8(Native(units), text);
    return text;
}

TEST(XmlEncoding, a_name_gives_its_code_page_in_any_case) {
    EXPECT_EQ(EncodingCodePage("iso-8859-1"), 28591U);
    EXPECT_EQ(EncodingCodePage("ISO-8859-1"), 28591U);
    EXPECT_EQ(EncodingCodePage("utf-16"), 1200U);
    EXPECT_EQ(EncodingCodePage("UTF-8"), 65001U);
    EXPECT_EQ(EncodingCodePage("windows-1252"), 1252U);
    EXPECT_EQ(EncodingCodePage("Shift_JIS"), 932U);
}

TEST(XmlEncoding, utf_32_has_a_fixed_code_page) { EXPECT_EQ(EncodingCodePage("UTF-32"), 65005U); }

TEST(XmlEncoding, an_unknown_or_overlong_name_has_no_code_page) {
    EXPECT_EQ(EncodingCodePage(""), 0U);
    EXPECT_EQ(EncodingCodePage("iso-8859-99"), 0U);
    EXPECT_EQ(EncodingCodePage(std::string(99, 'x')), 0U);
    EXPECT_EQ(EncodingCodePage(std::string(100, 'x')), 0U);
}

TEST(XmlEncoding, the_table_finds_each_of_its_365_names) {
    std::size_t count = 0;
    for (const XmlTableRow& row : XmlEncodingRows) {
        ++count;
        EXPECT_EQ(EncodingCodePage(row.name), row.number) << row.name;
    }
    EXPECT_EQ(count, 365U);
}

// The sum of the rows after they were compared with the registry.
TEST(XmlEncoding, the_table_has_the_registered_code_pages) {
    std::string rows;
    for (const XmlTableRow& row : XmlEncodingRows) {
        rows.append(row.name).append(" ").append(std::to_string(row.number)).append("\n");
    }
    EXPECT_EQ(CRC32().Compute({rows.begin(), rows.end()}), 0x5EFE80ACU);
}

TEST(XmlEncoding, a_surrogate_pair_is_one_character) {
    std::size_t lost = 9;
    EXPECT_EQ(ToUtf8(u"a\u00E4\u20AC\U0001F600z", lost), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z");
    EXPECT_EQ(lost, 0U);
}

TEST(XmlEncoding, a_lone_surrogate_at_the_end_is_a_question_mark) {
    const char16_t units[] = {u'a', 0xD83D};
    std::size_t lost = 0;
    EXPECT_EQ(ToUtf8({units, 2}, lost), "a?");
    EXPECT_EQ(lost, 1U);
}

TEST(XmlEncoding, a_high_surrogate_takes_the_next_unit_with_it) {
    const char16_t units[] = {0xD83D, 0x0041, u'b'};
    std::size_t lost = 0;
    // (0x3D << 10) + 0x41 + 0x10000
    EXPECT_EQ(ToUtf8({units, 3}, lost),
              "\xF0\x9F\x91\x81"
              "b");
    EXPECT_EQ(lost, 0U);
}

TEST(XmlEncoding, only_a_unit_from_d800_to_dbff_begins_a_pair) {
    const char16_t pairs[] = {0xD800, 0xDC00, 0xDBFF, 0xDFFF};
    const char16_t others[] = {0xD7FF, u'a', 0xDC00, u'b'};
    std::size_t lost = 0;
    EXPECT_EQ(ToUtf8({pairs, 4}, lost), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
    EXPECT_EQ(lost, 0U);
    EXPECT_EQ(ToUtf8({others, 4}, lost), std::string("\xED\x9F\xBF") + "a\xED\xB0\x80" + "b");
    EXPECT_EQ(lost, 0U);
}

TEST(XmlEncoding, half_a_unit_at_the_end_is_left_out) {
    std::string text;
    EXPECT_EQ(Utf16ToUtf8(Native(u"ab") + "x", text), 0U);
    EXPECT_EQ(text, "ab");
}

TEST(XmlEncoding, utf_8_becomes_utf_16_with_pairs) {
    std::string units;
    EXPECT_EQ(Utf8ToUtf16("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z", units), 0U);
    EXPECT_EQ(units, Native(u"a\u00E4\u20AC\U0001F600z"));
}

TEST(XmlEncoding, a_faulty_sequence_becomes_a_question_mark_in_utf_16) {
    std::string units;
    EXPECT_EQ(Utf8ToUtf16("a\xFF"
                          "b\xC3",
                          units),
              2U);
    EXPECT_EQ(units, Native(u"a?b?"));
}

TEST(XmlEncoding, utf_8_is_recognized_by_its_leading_bits) {
    const struct {
        const char* text;
        bool isUtf8;
    } cases[] = {{"", true},
                 {"abc", true},
                 {"\xC3\xA4", true},
                 {"\xE2\x82\xAC", true},
                 {"\xF0\x9F\x98\x80", true},
                 {"\xC3", false},
                 {"\xE2\x82", false},
                 {"\xF0\x9F\x98", false},
                 {"\x80", false},
                 {"\xC3z", false},
                 {"\xF8\x88\x80\x80\x80", false},
                 {"\xFF", false}};
    for (const auto& each : cases) {
        bool hasNonAscii = false;
        EXPECT_EQ(IsUtf8(each.text, hasNonAscii), each.isUtf8) << each.text;
    }
}

TEST(XmlEncoding, bytes_beyond_ascii_are_noticed) {
    bool hasNonAscii = false;
    IsUtf8("abc", hasNonAscii);
    EXPECT_FALSE(hasNonAscii);
    IsUtf8("ab\xE4", hasNonAscii);
    EXPECT_TRUE(hasNonAscii);
}

TEST(XmlEncoding, conversion_goes_both_ways) {
    const XmlConversion to = ConvertEncoding("UTF-8", "iso-8859-1", "a\xE4z", NoLimit);
    EXPECT_TRUE(to.isDone);
    EXPECT_EQ(to.text, "a\xC3\xA4z");
    EXPECT_EQ(to.lost, 0U);
    const XmlConversion from = ConvertEncoding("ISO-8859-1", "UTF-8", "a\xC3\xA4z", NoLimit);
    EXPECT_EQ(from.text, "a\xE4z");
}

TEST(XmlEncoding, a_text_longer_than_the_scratch_buffer_is_converted_whole) {
    std::string latin;
    std::string utf8;
    for (int count = 0; count < 5000; ++count) {
        latin += "\xE4";
        utf8 += "\xC3\xA4";
    }
    EXPECT_EQ(ConvertEncoding("UTF-8", "iso-8859-1", latin, NoLimit).text, utf8);
    EXPECT_EQ(ConvertEncoding("iso-8859-1", "UTF-8", utf8, NoLimit).text, latin);
}

TEST(XmlEncoding, faulty_bytes_across_the_scratch_buffer_become_marks) {
    const std::string faulty(5000, '\xFF');
    const XmlConversion conversion = ConvertEncoding("UTF-8", "US-ASCII", faulty, NoLimit);
    EXPECT_EQ(conversion.text, std::string(5000, '?'));
    EXPECT_EQ(conversion.lost, 5000U);
}

TEST(XmlEncoding, a_character_that_the_target_lacks_is_lost_byte_by_byte) {
    const XmlConversion conversion = ConvertEncoding("iso-8859-1", "UTF-8", "a\xE2\x82\xACz", NoLimit);
    EXPECT_EQ(conversion.text, "a???z");
    EXPECT_EQ(conversion.lost, 3U);
}

TEST(XmlEncoding, a_mark_in_utf_16_has_two_bytes) {
    EXPECT_EQ(ConvertEncoding("UTF-16LE", "UTF-8",
                              "a\xFF"
                              "b",
                              NoLimit)
                  .text,
              std::string("a\0?\0b\0", 6));
    EXPECT_EQ(ConvertEncoding("utf-16", "UTF-8",
                              "a\xFF"
                              "b",
                              NoLimit)
                  .text,
              std::string("\0a\0?\0b", 6));
}

TEST(XmlEncoding, a_lone_surrogate_in_a_conversion_is_a_mark) {
    const XmlConversion conversion = ConvertEncoding("UTF-8", "UTF-16LE",
                                                     std::string("a\0\x00\xDC"
                                                                 "b\0",
                                                                 6),
                                                     NoLimit);
    EXPECT_EQ(conversion.text, "a?b");
    EXPECT_EQ(conversion.lost, 1U);
}

TEST(XmlEncoding, an_incomplete_sequence_ends_the_conversion) {
    const XmlConversion conversion = ConvertEncoding("iso-8859-1", "UTF-8", "ab\xE2\x82", NoLimit);
    EXPECT_TRUE(conversion.isDone);
    EXPECT_EQ(conversion.text, "ab");
}

TEST(XmlEncoding, a_result_over_the_limit_is_refused) {
    const XmlConversion conversion = ConvertEncoding("UTF-8", "iso-8859-1", "\xE4\xE4", 3);
    EXPECT_FALSE(conversion.isDone);
    EXPECT_TRUE(conversion.isTooLong);
    EXPECT_EQ(conversion.text, "");
}

TEST(XmlEncoding, names_that_no_encoding_has_are_kept_from_the_library) {
    EXPECT_TRUE(CanConvertEncoding("UTF-8", "ISO-8859-15"));
    EXPECT_FALSE(CanConvertEncoding("UTF-8", "no-such-encoding"));
    EXPECT_FALSE(CanConvertEncoding("UTF-8//IGNORE", "UTF-8"));
    EXPECT_FALSE(CanConvertEncoding("UTF-8", "../../iso-8859-1"));
    EXPECT_FALSE(CanConvertEncoding("UTF-8", std::string(100, 'A')));
}

TEST(XmlEncoding, a_declaration_names_the_encoding) {
    EXPECT_EQ(DeclaredEncoding("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><r/>"), "iso-8859-1");
    EXPECT_EQ(DeclaredEncoding("\n<!-- c --><?xml encoding='koi8-r' ?>"), "koi8-r");
    EXPECT_EQ(DeclaredEncoding("<?xml version=\"1.0\"?><r encoding=\"a\"/>"), "");
    EXPECT_EQ(DeclaredEncoding("<?xml encoding=\"utf-8?><r/>"), "utf-8");
    EXPECT_EQ(DeclaredEncoding("<?pi encoding=\"a\"?><r/>"), "");
    EXPECT_EQ(DeclaredEncoding("<?xml encoding=\"a"), "");
    EXPECT_EQ(DeclaredEncoding(""), "");
}

TEST(XmlEncoding, an_html_form_names_the_encoding) {
    EXPECT_EQ(DeclaredEncoding("<!DOCTYPE html><html><head><meta name=\"a\"/><meta http-equiv=\"Content-Type\" "
                               "content=\"text/html; charset=iso-8859-2\"></head>"),
              "iso-8859-2");
    EXPECT_EQ(DeclaredEncoding("<head><meta http-equiv='Content-Type' content='charset=a; b'/>"), "a");
}

TEST(XmlEncoding, the_search_ends_at_another_start_tag_or_the_end_of_the_head) {
    const std::string meta = "<meta http-equiv=\"Content-Type\" content=\"charset=a\">";
    EXPECT_EQ(DeclaredEncoding("<html><head><title>" + meta), "");
    EXPECT_EQ(DeclaredEncoding("<html><head></head>" + meta), "");
    EXPECT_EQ(DeclaredEncoding("<html><head>" + meta), "a");
}

}  // namespace
