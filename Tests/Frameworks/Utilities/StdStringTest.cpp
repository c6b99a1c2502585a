#include "Frameworks/Utilities/StdString.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>

namespace {

template <typename Function>
StdString Changed(const char* text, Function change) {
    StdString result(text);
    change(result);
    return result;
}

std::int32_t Integer(const char* text) { return StdString(text).ToInteger(); }
bool Flag(const char* text) { return StdString(text).ToBool(); }

std::string TemporaryPath(const char* name) { return (std::filesystem::path(testing::TempDir()) / name).string(); }

}  // namespace

TEST(StdString, null_text_counts_as_empty) {
    StdString text(static_cast<const char*>(nullptr));
    EXPECT_TRUE(text.IsEmpty());
    text = static_cast<const char*>(nullptr);
    text += static_cast<const char*>(nullptr);
    EXPECT_EQ(text.Length(), 0);
}

TEST(StdString, is_built_assigned_and_joined_from_texts_and_characters) {
    StdString text('a');
    text += "b";
    text += StdString("c");
    text += 'd';
    EXPECT_EQ(text, "abcd");
    EXPECT_EQ(text + "e" + 'f' + StdString("g"), "abcdefg");
    text = 'z';
    EXPECT_EQ(text, "z");
    text.Clear();
    EXPECT_TRUE(text.IsEmpty());
}

TEST(StdString, Find_gives_the_position_or_minus_one) {
    const StdString text("abcabc");
    EXPECT_EQ(text.Find("bc"), 1);
    EXPECT_EQ(text.Find("bc", 2), 4);
    EXPECT_EQ(text.Find('c', 3), 5);
    EXPECT_EQ(text.Find("x"), -1);
    EXPECT_EQ(text.Find("a", 100), -1);
    EXPECT_EQ(text.Find("a", -5), 0);
}

TEST(StdString, ReverseFind_searches_from_the_end_or_from_a_start) {
    const StdString text("abcabc");
    EXPECT_EQ(text.ReverseFind("bc"), 4);
    EXPECT_EQ(text.ReverseFind('b', 3), 1);
    EXPECT_EQ(text.ReverseFind('b', 0), -1);
    EXPECT_EQ(text.ReverseFind("ab", 0), 0);
    EXPECT_EQ(text.ReverseFind("x"), -1);
}

TEST(StdString, Left_and_Right_hold_the_count_between_0_and_the_length) {
    const StdString text("abc");
    EXPECT_EQ(text.Left(2), "ab");
    EXPECT_EQ(text.Left(100), "abc");
    EXPECT_EQ(text.Left(-1), "");
    EXPECT_EQ(text.Right(2), "bc");
    EXPECT_EQ(text.Right(100), "abc");
    EXPECT_EQ(text.Right(-1), "");
}

TEST(StdString, Mid_takes_negative_numbers_as_0_and_cuts_the_count) {
    const StdString text("abcdef");
    EXPECT_EQ(text.Mid(-3, 2), "ab");
    EXPECT_EQ(text.Mid(4, 100), "ef");
    EXPECT_EQ(text.Mid(2), "cdef");
    EXPECT_EQ(text.Mid(2, -1), "");
    EXPECT_EQ(text.Mid(6, 1), "");
    EXPECT_EQ(text.Mid(100), "");
}

TEST(StdString, Trim_takes_blanks_off_either_end) {
    EXPECT_EQ(Changed(" \t a b \r\n", [](StdString& text) { text.Trim(); }), "a b");
    EXPECT_EQ(Changed("  a ", [](StdString& text) { text.TrimLeft(); }), "a ");
    EXPECT_EQ(Changed("  a ", [](StdString& text) { text.TrimRight(); }), "  a");
    EXPECT_EQ(Changed(" \t\r\n", [](StdString& text) { text.Trim(); }), "");
    EXPECT_EQ(Changed("xxaxx", [](StdString& text) { text.Trim("x"); }), "a");
}

TEST(StdString, case_and_order_change_in_place) {
    EXPECT_EQ(Changed("aBc", [](StdString& text) { text.ToUpper(); }), "ABC");
    EXPECT_EQ(Changed("aBc", [](StdString& text) { text.ToLower(); }), "abc");
    EXPECT_EQ(Changed("abc", [](StdString& text) { text.Reverse(); }), "cba");
}

TEST(StdString, Replace_counts_and_continues_after_each_replacement) {
    StdString text("aXaXa");
    EXPECT_EQ(text.Replace('a', 'b'), 3);
    EXPECT_EQ(text, "bXbXb");
    EXPECT_EQ(text.Replace("b", "bb"), 3);
    EXPECT_EQ(text, "bbXbbXbb");
    EXPECT_EQ(text.Replace("X", nullptr), 2);
    EXPECT_EQ(text, "bbbbbb");
    EXPECT_EQ(text.Replace("", "y"), 0);
    EXPECT_EQ(text.Replace(nullptr, "y"), 0);
}

TEST(StdString, Remove_Insert_and_Delete_keep_within_the_text) {
    EXPECT_EQ(Changed("a,b,c", [](StdString& text) { text.Remove(','); }), "abc");
    EXPECT_EQ(Changed("ac", [](StdString& text) { text.Insert(1, 'b'); }), "abc");
    EXPECT_EQ(Changed("ab", [](StdString& text) { text.Insert(2, "cd"); }), "abcd");
    EXPECT_EQ(Changed("ab", [](StdString& text) { text.Insert(99, "cd"); }), "abcd");
    EXPECT_EQ(Changed("abcd", [](StdString& text) { text.Delete(1, 2); }), "ad");
    EXPECT_EQ(Changed("abcd", [](StdString& text) { text.Delete(1, 99); }), "a");
    EXPECT_EQ(Changed("abcd", [](StdString& text) { text.Delete(0, 3); }), "d");
    EXPECT_EQ(Changed("abcd", [](StdString& text) { text.Delete(4, 1); }), "abcd");
    EXPECT_EQ(Changed("abcd", [](StdString& text) { text.Delete(-1, 1); }), "abcd");
}

TEST(StdString, CompareNoCase_compares_lower_case_copies) {
    const StdString text("AbC");
    EXPECT_EQ(text.CompareNoCase("aBc"), 0);
    EXPECT_LT(text.CompareNoCase("ABD"), 0);
    EXPECT_GT(text.CompareNoCase("ABB"), 0);
    EXPECT_EQ(text, "AbC");
}

TEST(StdString, Format_is_cut_to_its_buffer_and_empties_on_nothing) {
    StdString text;
    text.Format("%d-%s", 7, "x");
    EXPECT_EQ(text, "7-x");
    text.Format("%s", std::string(5000, 'y').c_str());
    EXPECT_EQ(text.Length(), 2 + 1024 - 1);
    text = "kept";
    text.Format("%s", "");
    EXPECT_EQ(text, "");
}

TEST(StdString, ToInteger_reads_decimal_and_hexadecimal) {
    EXPECT_EQ(Integer("0x1F"), 31);
    EXPECT_EQ(Integer("0x10"), 16);
    EXPECT_EQ(Integer("10"), 10);
    EXPECT_EQ(Integer(" 010 "), 10);
    EXPECT_EQ(Integer("12abc"), 12);
    EXPECT_EQ(Integer("-7"), -7);
    EXPECT_EQ(Integer("0x"), 0);
    EXPECT_EQ(Integer("x"), 0);
    EXPECT_EQ(Integer("next"), 0);
    EXPECT_EQ(Integer(""), 0);
    EXPECT_EQ(Integer("nothing"), 0);
}

// The instrument's long has 32 bits, which limits decimal numbers to half the range, but not hexadecimal ones.
TEST(StdString, ToUnsigned_limits_decimal_numbers_to_a_long) {
    EXPECT_EQ(StdString("2147483647").ToUnsigned(), 0x7FFFFFFFU);
    EXPECT_EQ(StdString("4294967295").ToUnsigned(), sizeof(long) == 4 ? 0x7FFFFFFFU : 0xFFFFFFFFU);
}

TEST(StdString, reads_minus_1_as_the_same_32_bits_with_and_without_sign) {
    EXPECT_EQ(StdString("-1").ToInteger(), -1);
    EXPECT_EQ(StdString("-1").ToUnsigned(), 0xFFFFFFFFU);
}

TEST(StdString, ToInteger_and_ToUnsigned_are_the_same_routine_and_change_the_text) {
    StdString text(" 0XFFFFFFFF ");
    EXPECT_EQ(text.ToUnsigned(), 0xFFFFFFFFU);
    EXPECT_EQ(text, "0xffffffff");
    EXPECT_EQ(text.ToInteger(), -1);
}

TEST(StdString, ToDouble_and_ToFloat_leave_the_text_unchanged) {
    const StdString text(" 2.5e1xyz ");
    EXPECT_EQ(text.ToDouble(), 25.0);
    EXPECT_EQ(StdString("0.1").ToFloat(), 0.1F);
    EXPECT_EQ(StdString("none").ToDouble(), 0.0);
    EXPECT_EQ(text, " 2.5e1xyz ");
}

TEST(StdString, ToBool_knows_four_words_and_changes_the_text) {
    StdString text(" Yes\n");
    EXPECT_TRUE(text.ToBool());
    EXPECT_EQ(text, "yes");
    EXPECT_TRUE(Flag("TRUE"));
    EXPECT_TRUE(Flag("oN"));
    EXPECT_TRUE(Flag("1"));
    EXPECT_FALSE(Flag("2"));
    EXPECT_FALSE(Flag("off"));
    EXPECT_FALSE(Flag("y"));
    EXPECT_FALSE(Flag(""));
}

TEST(StdString, numbers_become_text) {
    StdString text;
    text.FromInteger(-42);
    EXPECT_EQ(text, "-42");
    text.FromDouble(1.5);
    EXPECT_EQ(text, "1.500000");
    text.FromDouble(1.5, "%5.1f");
    EXPECT_EQ(text, "  1.5");
    text.FromDouble(1e300);
    EXPECT_EQ(text.Length(), 63);
}

TEST(StdString, a_number_has_the_digits_that_printf_gives_it) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    for (const double number : {0.0, -0.0, 0.5e-6, 1.5e-6, 2.5e-6, -99999.9, 0.1, 1.0 / 3.0, 16777216.5, 6543210.123,
                                5e-324, 123456789012345678.0, 1e57, infinity, -infinity, nothing, -nothing}) {
        char digits[64];
        std::snprintf(digits, sizeof digits, "%f", number);
        StdString text;
        text.FromDouble(number);
        EXPECT_EQ(text.Text(), digits);
    }
    for (const int number : {0, 7, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        StdString text;
        text.FromInteger(number);
        EXPECT_EQ(text.Text(), std::to_string(number));
    }
}

TEST(StdString, a_file_is_read_and_written_whole) {
    const std::string path = TemporaryPath("stdstring.bin");
    const StdString text(std::string("a\0b\r\n\xFF", 6));
    EXPECT_EQ(text.WriteFile(path), 6);
    StdString read("before");
    EXPECT_EQ(read.ReadFile(path), 6);
    EXPECT_EQ(read, text);
    std::filesystem::remove(path);
}

TEST(StdString, a_file_that_does_not_open_leaves_an_empty_text) {
    StdString text("before");
    EXPECT_EQ(text.ReadFile(TemporaryPath("missing.bin")), 0);
    EXPECT_TRUE(text.IsEmpty());
    text = "before";
    EXPECT_EQ(text.ReadFile(""), 0);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(StdString("x").WriteFile(""), 0);
    EXPECT_EQ(StdString("x").WriteFile(TemporaryPath("no/such/folder")), 0);
}

TEST(StdString, a_write_that_fails_at_the_close_counts_nothing) { EXPECT_EQ(StdString("x").WriteFile("/dev/full"), 0); }
