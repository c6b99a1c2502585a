#include <gtest/gtest.h>

#include <cstdlib>

#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/TimeInfo.h"
#include "Frameworks/Utilities/TimeSpec.h"
#include "Tests/Support/ExactTime.h"

namespace {

TimeInfo At(std::int32_t seconds, std::int32_t nanoSeconds) {
    timespec time{};
    time.tv_sec = seconds;
    time.tv_nsec = nanoSeconds;
    TimeInfo info;
    info = time;
    return info;
}

TimeSpec Span(std::int32_t seconds, std::int32_t nanoSeconds) { return {seconds, nanoSeconds}; }

class TimeStrings : public testing::Test {
protected:
    TimeStrings() { setenv("TZ", "MST7", 1); }
    ~TimeStrings() override { unsetenv("TZ"); }
};

using TimeSpecInExactTime = ExactBoardTest;

std::string lastReport;

}  // namespace

TEST_F(TimeStrings, show_the_zone_the_date_and_nine_digits_of_the_fraction) {
    EXPECT_EQ(At(1356980399, 123456789).GetTimeString(), "MST 2012-12-31 11:59:59.123456789");
}

TEST_F(TimeStrings, carry_no_leading_zeros_in_the_fraction) {
    EXPECT_EQ(At(0, 5000000).GetTimeString(), "MST 1969-12-31 17:00:00.5000000");
    EXPECT_EQ(At(0, 120000000).GetTimeString(3), "MST 1969-12-31 17:00:00.120");
    EXPECT_EQ(At(0, 5000).GetTimeString(3), "MST 1969-12-31 17:00:00.500");
    EXPECT_EQ(At(0, 0).GetTimeString(9), "MST 1969-12-31 17:00:00.0");
}

TEST_F(TimeStrings, with_0_digits_have_no_fraction) { EXPECT_EQ(At(0, 5).GetTimeString(0), "MST 1969-12-31 17:00:00"); }

TEST_F(TimeStrings, above_9_digits_have_the_whole_number) {
    EXPECT_EQ(At(0, 1234567890).GetTimeString(10), "MST 1969-12-31 17:00:00.1234567890");
    EXPECT_EQ(At(0, 1234567890).GetTimeString(9), "MST 1969-12-31 17:00:00.123456789");
}

TEST_F(TimeStrings, of_another_format_have_a_fraction_only_after_seconds) {
    TimeInfo time = At(0, 120000000);
    time.SetFormat("%H:%M:%S");
    EXPECT_EQ(time.GetTimeString(3), "17:00:00.120");
    time.SetFormat("%Y-%H");
    EXPECT_EQ(time.GetTimeString(3), "1969-17");
    time.SetDefaultFormat();
    EXPECT_EQ(time.GetTimeString(0), "MST 1969-12-31 17:00:00");
}

TEST_F(TimeStrings, follow_a_change_of_the_time_zone) {
    const TimeInfo time = At(0, 0);
    EXPECT_EQ(time.GetTimeString(0), "MST 1969-12-31 17:00:00");
    setenv("TZ", "UTC0", 1);
    EXPECT_EQ(time.GetTimeString(0), "UTC 1970-01-01 00:00:00");
}

TEST_F(TimeStrings, report_a_format_that_gives_nothing) {
    lastReport.clear();
    SetReportFunction([](const StdString& text, LogLevel level, ControllerType origin) {
        EXPECT_EQ(level, ERROR_LOG_LEVEL);
        EXPECT_EQ(origin, SYSTEM_CONTROL);
        lastReport = text.Text();
    });
    TimeInfo time;
    time.SetFormat("%Z %Y-%m-%d %H:%M:%S and much more than there is room for");
    time.GetTimeString(0);
    SetReportFunction(nullptr);
    EXPECT_EQ(lastReport, "TimeInfo::GetTimeString  Unable to get formatted time string");
}

TEST(TimeInfo, adds_milliseconds_without_carrying_into_seconds) {
    TimeInfo time = At(10, 900000000);
    time.AddMilliSeconds(1500);
    EXPECT_EQ(time.GetSeconds(), 11);
    EXPECT_EQ(time.GetNanoSeconds(), 1400000000);
}

TEST(TimeInfo, adds_the_most_milliseconds_exactly) {
    TimeInfo time = At(0, 0);
    time.AddMilliSeconds(4294967295U);
    EXPECT_EQ(time.GetSeconds(), 4294967);
    EXPECT_EQ(time.GetNanoSeconds(), 295000000);
}

TEST(TimeInfo, orders_by_seconds_then_nanoseconds) {
    EXPECT_TRUE(At(1, 9) < At(2, 0));
    EXPECT_TRUE(At(2, 1) > At(2, 0));
    EXPECT_TRUE(At(-1, 0) < At(0, 0));
    EXPECT_TRUE(At(2, 0) <= At(2, 0));
    EXPECT_TRUE(At(2, 0) == At(2, 0));
    EXPECT_FALSE(At(2, 1) == At(2, 0));
}

TEST(TimeInfo, the_infinite_time_is_minus_one_in_both_fields) {
    TimeInfo time = At(-1, 0);
    EXPECT_FALSE(time.IsInfinite());
    time.SetInfinite();
    EXPECT_TRUE(time.IsInfinite());
    time.Clear();
    EXPECT_TRUE(time == At(0, 0));
}

TEST(TimeInfo, copies_carry_the_format) {
    TimeInfo time = At(0, 0);
    time.SetFormat("%Y");
    const TimeInfo copy(time);
    TimeInfo assigned;
    assigned = time;
    EXPECT_EQ(copy.GetTimeString(0), assigned.GetTimeString(0));
    EXPECT_EQ(copy.GetTimeString(0).Length(), 4);
}

TEST(TimeInfo, spreadsheet_time_counts_days_from_1899_12_30) {
    EXPECT_EQ(At(0, 0).GetXcelTime(), 25569.0);
    EXPECT_EQ(At(43200, 999999999).GetXcelTime(), 25569.5);
}

TEST(TimeSpec, adding_across_a_second_changes_nothing) {
    TimeSpec time = Span(1, 600000000);
    time += 300000000U;
    EXPECT_EQ(time.GetNanoSeconds(), 900000000);
    time += 100000000U;
    EXPECT_EQ(time.GetSeconds(), 1);
    EXPECT_EQ(time.GetNanoSeconds(), 900000000);
    time += 1000000000U;
    EXPECT_EQ(time.GetNanoSeconds(), 900000000);
}

TEST(TimeSpec, adding_a_span_adds_its_seconds_and_nanoseconds_below_a_second) {
    TimeSpec time = Span(1, 600000000);
    time += Span(2, 300000000);
    EXPECT_EQ(time.GetSeconds(), 3);
    EXPECT_EQ(time.GetNanoSeconds(), 900000000);
}

TEST(TimeSpec, fields_can_be_set_one_by_one) {
    TimeSpec time = Span(1, 2);
    time.SetSeconds(3);
    EXPECT_EQ(time.GetNanoSeconds(), 2);
    time.SetNanoSeconds(4);
    EXPECT_EQ(time.GetSeconds(), 3);
    EXPECT_EQ(time.GetNanoSeconds(), 4);
}

TEST(TimeSpec, nanoseconds_stay_below_a_second_and_above_minus_1) {
    EXPECT_EQ(Span(1, 1000000000).GetNanoSeconds(), 999999999);
    EXPECT_EQ(Span(1, -1).GetNanoSeconds(), 0);
    TimeSpec time = Span(1, 2);
    time.SetNanoSeconds(2147483647);
    EXPECT_EQ(time.GetNanoSeconds(), 999999999);
    time.SetNanoSeconds(-2147483647 - 1);
    EXPECT_EQ(time.GetNanoSeconds(), 0);
    EXPECT_EQ(time.GetSeconds(), 1);
}

TEST(TimeSpec, subtracting_borrows_a_second) {
    TimeSpec time = Span(5, 100000000);
    time -= 200000000U;
    EXPECT_EQ(time.GetSeconds(), 4);
    EXPECT_EQ(time.GetNanoSeconds(), 900000000);
    time -= Span(1, 900000000);
    EXPECT_EQ(time.GetSeconds(), 3);
    EXPECT_EQ(time.GetNanoSeconds(), 0);
    time -= 1000000000U;
    EXPECT_EQ(time.GetSeconds(), 3);
}

TEST(TimeSpec, tenths_of_milliseconds_come_from_the_low_16_bits) {
    TimeSpec time = Span(0, 0);
    time.SetTenthMilliSeconds(0x10000U + 25000U);
    EXPECT_EQ(time.GetSeconds(), 2);
    EXPECT_EQ(time.GetNanoSeconds(), 500000000);
    EXPECT_TRUE(time.IsAboveTenthMilliSeconds(24999));
    EXPECT_TRUE(time.IsBelowTenthMilliSeconds(25001));
    EXPECT_TRUE(time.IsAboveNanoSeconds(2499999999));
    EXPECT_TRUE(time.IsBelowNanoSeconds(2500000001));
    EXPECT_TRUE(Span(2, 0) < time);
    EXPECT_TRUE(time > Span(2, 0));
}

TEST(TimeSpec, retry_is_on_until_switched_off) {
    TimeSpec time;
    EXPECT_TRUE(time.GetRetry());
    time.SetRetryOff();
    EXPECT_FALSE(time.GetRetry());
    time.SetRetryOn();
    EXPECT_TRUE(time.GetRetry());
}

TEST_F(TimeSpecInExactTime, only_a_request_with_both_fields_above_zero_sleeps) {
    TimeSpec rest = Span(0, 0);
    const TimeSpec seconds = Span(1000, 0);
    const TimeSpec nanoSeconds = Span(0, 500);
    const TimeSpec negative = Span(-1, 5);
    EXPECT_FALSE(TimeSpec::Sleep(&seconds, &rest, true));
    EXPECT_FALSE(TimeSpec::Sleep(&nanoSeconds, &rest, true));
    EXPECT_FALSE(TimeSpec::Sleep(&negative, &rest, true));
    EXPECT_FALSE(TimeSpec::Sleep(nullptr, &rest, true));
    EXPECT_FALSE(TimeSpec::Sleep(&seconds, nullptr, true));
    EXPECT_THAT(Board().Seconds(), IsWaitOf(0.0));
    const TimeSpec both = Span(1, 500000000);
    EXPECT_TRUE(TimeSpec::Sleep(&both, &rest, true));
    EXPECT_THAT(Board().Seconds(), IsWaitOf(1.5));
}
