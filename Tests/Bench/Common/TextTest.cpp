#include "Bench/Common/Text.h"

#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"

namespace Bench {
namespace {

TEST(Text, median_is_the_middle_value) {
    EXPECT_EQ(Median({3.0, 1.0, 2.0}), 2.0);
    EXPECT_EQ(Median({4.0, 1.0, 3.0, 2.0}), 2.5);
    EXPECT_EQ(Median({}), 0.0);
}

TEST(Text, fields_are_split_at_each_comma) {
    EXPECT_EQ(SplitAtCommas("a,,b c,"), (std::vector<std::string>{"a", "", "b c", ""}));
    EXPECT_EQ(SplitAtCommas(""), (std::vector<std::string>{""}));
}

TEST(Text, format_prints_as_printf) { EXPECT_EQ(Format("%.2f %s %d", 0.125, "mg/l", -3), "0.12 mg/l -3"); }

TEST(Text, file_is_read_whole) {
    const TemporaryFolder folder;
    WriteFile(folder / "full", std::string("a\0\r\n", 4));
    WriteFile(folder / "empty", "");
    EXPECT_EQ(ReadWholeFile(folder / "full"), std::string("a\0\r\n", 4));
    EXPECT_EQ(ReadWholeFile(folder / "empty"), "");
    EXPECT_EQ(ReadWholeFile(folder / "none"), std::nullopt);
    EXPECT_EQ(ReadWholeFile(folder.Path()), std::nullopt);
}

}  // namespace
}  // namespace Bench
