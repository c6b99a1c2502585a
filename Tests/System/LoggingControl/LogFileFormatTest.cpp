#include "System/LoggingControl/LogFileFormat.h"

#include <gtest/gtest.h>

namespace {

LogFileFormat FormatOf(const char* name) {
    LogFileFormat format = NO_LOG_FILE_FORMAT;
    SetLogFileFormat(format, name);
    return format;
}

}  // namespace

TEST(LogFileFormat, is_named_by_four_texts_in_order) {
    EXPECT_EQ(FormatOf("CSV"), 0);
    EXPECT_EQ(FormatOf("XML"), 1);
    EXPECT_EQ(FormatOf("BINARY"), 2);
    EXPECT_EQ(FormatOf("TEXT"), 3);
}

TEST(LogFileFormat, matches_nothing_in_another_case) { EXPECT_EQ(FormatOf("csv"), NO_LOG_FILE_FORMAT); }

TEST(LogFileFormat, matches_nothing_with_a_blank_around_it) { EXPECT_EQ(FormatOf(" CSV"), NO_LOG_FILE_FORMAT); }

TEST(LogFileFormat, stays_as_it_was_for_an_unknown_text) {
    LogFileFormat format = TEXT_LOG_FILE_FORMAT;
    SetLogFileFormat(format, "JSON");
    EXPECT_EQ(format, TEXT_LOG_FILE_FORMAT);
}
