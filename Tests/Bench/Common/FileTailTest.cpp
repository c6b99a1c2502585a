#include "Bench/Common/FileTail.h"

#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"

namespace Bench {
namespace {

using Lines = std::vector<std::string>;

TEST(FileTail, each_line_comes_once_and_only_when_whole) {
    const TemporaryFolder folder;
    FileTail tail(folder / "file");
    EXPECT_EQ(tail.Read(), Lines{});
    WriteFile(folder / "file", "one\r\ntwo");
    EXPECT_EQ(tail.Read(), Lines{"one"});
    EXPECT_EQ(tail.Read(), Lines{});
    WriteFile(folder / "file", "\r", true);
    EXPECT_EQ(tail.Read(), Lines{});
    WriteFile(folder / "file", "\n\nthree\n", true);
    EXPECT_EQ(tail.Read(), (Lines{"two", "", "three"}));
}

TEST(FileTail, file_that_vanished_and_came_back_goes_on_where_it_was) {
    const TemporaryFolder folder;
    FileTail tail(folder / "file");
    WriteFile(folder / "file", "one\n");
    EXPECT_EQ(tail.Read(), Lines{"one"});
    std::filesystem::rename(folder / "file", folder / "away");
    EXPECT_EQ(tail.Read(), Lines{});
    std::filesystem::rename(folder / "away", folder / "file");
    WriteFile(folder / "file", "two\n", true);
    EXPECT_EQ(tail.Read(), Lines{"two"});
}

TEST(FileTail, long_lines_are_kept_whole) {
    const TemporaryFolder folder;
    FileTail tail(folder / "file");
    const std::string line(50000, 'x');
    WriteFile(folder / "file", line + "\n");
    EXPECT_EQ(tail.Read(), Lines{line});
}

TEST(DayFileTail, days_come_in_their_order_and_other_files_not_at_all) {
    const TemporaryFolder folder;
    DayFileTail tail(folder.Path(), "Status.csv");
    WriteFile(folder / "2027-01-01_Status.csv", "new year\n");
    WriteFile(folder / "2026-12-31_Status.csv", "old year\n");
    WriteFile(folder / "2026-12-31_Measurement.csv", "no\n");
    WriteFile(folder / "Status.csv", "no\n");
    WriteFile(folder / "x2026-12-31_Status.csv", "no\n");
    const std::vector<DayFileTail::Line> lines = tail.Read();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].file, "2026-12-31_Status.csv");
    EXPECT_EQ(lines[0].text, "old year");
    EXPECT_EQ(lines[1].text, "new year");
    WriteFile(folder / "2026-12-31_Status.csv", "late\n", true);
    ASSERT_EQ(tail.Read().size(), 1U);
}

TEST(DayFileTail, folder_that_is_not_there_gives_nothing) {
    const TemporaryFolder folder;
    DayFileTail tail(folder / "nowhere", "Status.csv");
    EXPECT_TRUE(tail.Read().empty());
}

TEST(LogRecord, text_is_the_fifth_field_of_a_log_record) {
    EXPECT_EQ(TextOfLogRecord("7\tVernicor\t43\t8\ta text\t%s"), "a text");
    EXPECT_EQ(TextOfLogRecord("7\t\t0\t8\t\t"), "");
    EXPECT_EQ(TextOfLogRecord("7\tVernicor\t43\t8\ta\\tb"), "a\\tb");
    EXPECT_FALSE(TextOfLogRecord("7\tVernicor\t43").has_value());
    EXPECT_FALSE(TextOfLogRecord("").has_value());
}

}  // namespace
}  // namespace Bench
