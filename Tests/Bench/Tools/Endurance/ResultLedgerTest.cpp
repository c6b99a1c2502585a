#include "Bench/Tools/Endurance/ResultLedger.h"

#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"

namespace {

constexpr const char* Columns = "Text Date / Time,Chlorine,Seconds,Nano Seconds\n";

class Ledger : public testing::Test {
protected:
    void Tell(const std::string& date, double second) {
        ledger.Look({Bench::DecodeFrontEndFrame("ChlorineValue~0.60;DateValue~" + date + "\n")}, second);
    }
    void Write(const std::string& text) { WriteFile(folder / "2026-12-31_Measurement.csv", text, true); }

    TemporaryFolder folder;
    Bench::ResultLedger ledger{folder.Path(), "Measurement.csv"};
};

}  // namespace

TEST(FrontEndDates, are_told_as_the_front_end_is) {
    EXPECT_EQ(Bench::FrontEndDate(1362492847), "@Tuesday March 05,02:14:07 pm");
    EXPECT_EQ(Bench::FrontEndDate(1798675200), "@Thursday December 31,12:00:00 am");
}

TEST_F(Ledger, finds_a_result_by_its_second_in_a_day_file) {
    Tell("@Thursday December 31,12:00:00 am", 5.0);
    EXPECT_EQ(ledger.Pending().size(), 1U);
    Write(std::string(Columns) + "UTC,0.6,1798675200,17\n");
    ledger.Look({}, 6.0);
    EXPECT_TRUE(ledger.Pending().empty());
    EXPECT_EQ(ledger.Reported(), 1U);
    EXPECT_EQ(ledger.Recorded(), 1U);
}

TEST_F(Ledger, takes_a_record_that_was_there_first) {
    Write(std::string(Columns) + "UTC,0.6,1798675200,17\n");
    ledger.Look({}, 4.0);
    Tell("@Thursday December 31,12:00:00 am", 5.0);
    EXPECT_TRUE(ledger.Pending().empty());
}

TEST_F(Ledger, keeps_a_result_of_another_second_with_the_moment_that_it_was_told) {
    Write(std::string(Columns) + "UTC,0.6,1798675201,17\n");
    Tell("@Thursday December 31,12:00:00 am", 5.0);
    ASSERT_EQ(ledger.Pending().size(), 1U);
    EXPECT_EQ(ledger.Pending().front().date, "@Thursday December 31,12:00:00 am");
    EXPECT_EQ(ledger.Pending().front().seconds, 5.0);
}

TEST_F(Ledger, finds_two_results_of_one_second_only_in_two_records) {
    Tell("@Thursday December 31,12:00:00 am", 5.0);
    Tell("@Thursday December 31,12:00:00 am", 5.0);
    Write(std::string(Columns) + "UTC,0.6,1798675200,17\n");
    ledger.Look({}, 6.0);
    EXPECT_EQ(ledger.Pending().size(), 1U);
}

TEST_F(Ledger, tells_a_line_that_is_no_record) {
    Write("UTC,0.6\n");
    ledger.Look({}, 1.0);
    EXPECT_EQ(ledger.Trouble(), "no record in 2026-12-31_Measurement.csv: UTC,0.6");
}
