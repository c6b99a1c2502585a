#include "System/MeasurementEngine/SampleStatistics.h"

#include <gtest/gtest.h>

#include <cmath>

#include "System/MeasurementEngine/DetectorProcessing.h"

namespace {

const std::vector<double> TenCounts{-100.0, 1.0, 2.0, 10.0, 12.0, 14.0, 16.0, 30.0, 40.0, 900.0};

}  // namespace

TEST(SampleStatistics, three_and_three_of_ten_rejected_leave_four_to_average) {
    EXPECT_EQ(TrimmedMean(TenCounts, 3, 3), 13.0);
    EXPECT_EQ(TrimmedDeviation(TenCounts, 3, 3), std::sqrt((9.0 + 1.0 + 1.0 + 9.0) / 4.0));
}

TEST(SampleStatistics, the_high_count_rejects_the_largest_and_the_low_count_the_smallest) {
    EXPECT_EQ(TrimmedMean(TenCounts, 9, 0), -100.0);
    EXPECT_EQ(TrimmedMean(TenCounts, 0, 9), 900.0);
}

TEST(SampleStatistics, as_many_rejected_as_there_are_give_zero) {
    EXPECT_EQ(TrimmedMean(TenCounts, 5, 5), 0.0);
    EXPECT_EQ(TrimmedDeviation(TenCounts, 5, 5), 0.0);
    EXPECT_EQ(TrimmedMean(TenCounts, 0, 11), 0.0);
}

TEST(SampleStatistics, reject_counts_whose_sum_passes_32_bits_give_zero) {
    EXPECT_EQ(TrimmedMean(TenCounts, 0xFFFFFFFF, 1), 0.0);
    EXPECT_EQ(TrimmedMean(TenCounts, 0xFFFFFFFF, 0xFFFFFFFF), 0.0);
}

TEST(SampleStatistics, no_sample_gives_zero) {
    EXPECT_EQ(RawMean({}), 0.0);
    EXPECT_EQ(RawDeviation({}), 0.0);
    EXPECT_EQ(TrimmedMean({}, 0, 0), 0.0);
    EXPECT_EQ(TrimmedDeviation({}, 0, 0), 0.0);
}

TEST(SampleStatistics, the_deviation_is_divided_by_the_number_of_samples) {
    EXPECT_EQ(RawMean({2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0}), 5.0);
    EXPECT_EQ(RawDeviation({2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0}), 2.0);
}

TEST(DetectorWord, bit_24_of_the_reading_is_set_for_positive_counts) {
    EXPECT_EQ(CountOfDetectorWord(0x1000000U << 5U), 0);
    EXPECT_EQ(CountOfDetectorWord(0x1000001U << 5U), 1);
    EXPECT_EQ(CountOfDetectorWord(0x1FFFFFFU << 5U), 16777215);
}

TEST(DetectorWord, without_bit_24_the_count_is_negative) {
    EXPECT_EQ(CountOfDetectorWord(0x0FFFFFFU << 5U), -1);
    EXPECT_EQ(CountOfDetectorWord(0), -16777216);
}

TEST(DetectorWord, the_two_bits_above_and_the_five_below_the_reading_do_not_count) {
    EXPECT_EQ(CountOfDetectorWord(0xC0000000U | (0x1000007U << 5U) | 0x1FU), 7);
}

TEST(DetectorWord, all_ones_are_no_reading_and_count_as_zero) { EXPECT_EQ(CountOfDetectorWord(0xFFFFFFFF), 0); }
