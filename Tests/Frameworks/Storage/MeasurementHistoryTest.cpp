#include "Frameworks/Storage/MeasurementHistory.h"

#include <gtest/gtest.h>

#include <string>

#include "Tests/Frameworks/Storage/HistoryTexts.h"

namespace {

MeasurementHistory HistoryOf(std::uint32_t count) {
    MeasurementHistory history;
    for (std::uint32_t seconds = 1; seconds <= count; ++seconds) {
        EXPECT_TRUE(history.Add(seconds, 0.5F));
    }
    return history;
}

}  // namespace

TEST(MeasurementDataPoint, a_copy_has_all_three_fields) {
    const MeasurementDataPoint point = PointOf(7, 8, 9.5F);
    MeasurementDataPoint copy;
    copy = point;
    EXPECT_EQ(TextOf(copy), "7 8 9.500000");
    EXPECT_EQ(TextOf(MeasurementDataPoint(point)), "7 8 9.500000");
}

TEST(MeasurementHistory, keeps_results_in_order_with_their_checksums) {
    MeasurementHistory history;
    EXPECT_TRUE(history.Add(1, 0.5F));
    EXPECT_TRUE(history.Add(2, 1.5F));
    EXPECT_EQ(TextOf(history), FirstLine + SecondLine);
}

TEST(MeasurementHistory, computes_a_new_checksum_for_an_added_point) {
    MeasurementHistory history;
    EXPECT_TRUE(history.Add(PointOf(4711, 1, 0.5F)));
    EXPECT_EQ(TextOf(history), FirstLine);
}

TEST(MeasurementHistory, knows_the_last_point_and_its_checksum) {
    MeasurementHistory history;
    EXPECT_EQ(history.GetLastCRC(), 0U);
    history.Add(2, 1.5F);
    EXPECT_EQ(history.GetLastCRC(), SecondSum);
    EXPECT_EQ(TextOf(history.GetLastPoint()) + "\n", SecondLine);
}

TEST(MeasurementHistory, drops_the_oldest_of_3001_and_says_true) {
    MeasurementHistory history = HistoryOf(3000);
    ASSERT_EQ(history.Size(), 3000U);
    EXPECT_TRUE(history.Add(3001, 0.5F));
    EXPECT_EQ(history.Size(), 3000U);
    MeasurementDataPoint point;
    history.Get(0, point);
    EXPECT_EQ(point.GetSeconds(), 2U);
    history.Get(2999, point);
    EXPECT_EQ(point.GetSeconds(), 3001U);
}

TEST(MeasurementHistory, refuses_an_index_above_its_size) {
    const MeasurementHistory history = HistoryOf(2);
    MeasurementDataPoint point = PointOf(7, 8, 9.5F);
    EXPECT_FALSE(history.Get(3, point));
    EXPECT_FALSE(history.Get(static_cast<std::size_t>(-1), point));
    EXPECT_EQ(TextOf(point), "7 8 9.500000");
}

// The bound is one too high; callers use the size.
TEST(MeasurementHistory, accepts_its_size_as_an_index_and_leaves_the_point) {
    MeasurementDataPoint point = PointOf(7, 8, 9.5F);
    EXPECT_TRUE(HistoryOf(2).Get(2, point));
    EXPECT_TRUE(MeasurementHistory().Get(0, point));
    EXPECT_EQ(TextOf(point), "7 8 9.500000");
}

TEST(MeasurementHistory, assignment_replaces_all_but_the_last_point) {
    MeasurementHistory history = HistoryOf(5);
    const std::string lastPoint = TextOf(history.GetLastPoint());
    MeasurementHistory other;
    other.Add(2, 1.5F);
    history = other;
    EXPECT_EQ(TextOf(history), TextOf(other));
    EXPECT_EQ(history.GetLastCRC(), SecondSum);
    EXPECT_EQ(TextOf(history.GetLastPoint()), lastPoint);
}

TEST(MeasurementHistory, assignment_to_itself_changes_nothing) {
    MeasurementHistory history = HistoryOf(5);
    const MeasurementHistory& same = history;
    history = same;
    EXPECT_EQ(history.Size(), 5U);
}

TEST(MeasurementHistory, clear_leaves_nothing) {
    MeasurementHistory history = HistoryOf(5);
    history.Clear();
    EXPECT_EQ(history.Size(), 0U);
}

TEST(MeasurementHistory, prints_three_lines_a_result) {
    MeasurementHistory history;
    history.Add(1, 0.5F);
    history.Add(1356955199, 0.35F);
    testing::internal::CaptureStdout();
    history.Print();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "CRC:         535753418\n"
              "Seconds:     1\n"
              "Measurement: 0.5\n"
              "CRC:         2863259252\n"
              "Seconds:     1356955199\n"
              "Measurement: 0.35\n");
}
