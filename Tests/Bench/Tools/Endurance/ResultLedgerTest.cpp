#include "Bench/Tools/Endurance/ResultLedger.h"

#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"

namespace {

constexpr const char* Columns = "Text Date / Time,Chlorine,Seconds,Nano Seconds\n";

class Ledger : public testing::Test {
protected:
    void Report(const std::string& date, double second) {
        ledger.Update({Bench::DecodeFrontEndFrame("ChlorineValue~0.60;DateValue~" + date + "\n")}, second);
    }
    void Write(const std::string& text) { WriteFile(folder / "2026-12-31_Measurement.csv", text, true); }

    TemporaryFolder folder;
    Bench::ResultLedger ledger{folder.Path(), "Measurement.csv"};
};

}  // namespace

TEST(FrontEndDates, have_the_form_of_the_link) {
    EXPECT_EQ(Bench::FrontEndDate(1362492847), "@Tuesday March 05,02:14:07 pm");
    EXPECT_EQ(Bench::FrontEndDate(1798675200), "@Thursday December 31,12:00:00 am");
}

TEST_F(Ledger, finds_a_result_by_its_second_in_a_day_file) {
    Report("@Thursday December 31,12:00:00 am", 5.0);
    EXPECT_EQ(ledger.Pending().size(), 1U);
    Write(std::string(Columns) + "UTC,0.6,1798675200,17\n");
    ledger.Update({}, 6.0);
    EXPECT_TRUE(ledger.Pending().empty());
    EXPECT_EQ(ledger.Reported(), 1U);
    EXPECT_EQ(ledger.Recorded(), 1U);
}

TEST_F(Ledger, accepts_a_record_before_its_result) {
    Write(std::string(Columns) + "UTC,0.6,1798675200,17\n");
    ledger.Update({}, 4.0);
    Report("@Thursday December 31,12:00:00 am", 5.0);
    EXPECT_TRUE(ledger.Pending().empty());
}

TEST_F(Ledger, keeps_a_result_of_another_second) {
    Write(std::string(Columns) + "UTC,0.6,1798675201,17\n");
    Report("@Thursday December 31,12:00:00 am", 5.0);
    ASSERT_EQ(ledger.Pending().size(), 1U);
    EXPECT_EQ(ledger.Pending().front().date, "@Thursday December 31,12:00:00 am");
    EXPECT_EQ(ledger.Pending().front().seconds, 5.0);
}

TEST_F(Ledger, needs_two_records_for_two_results_of_one_second) {
    Report("@Thursday December 31,12:00:00 am", 5.0);
    Report("@Thursday December 31,12:00:00 am", 5.0);
    Write(std::string(Columns) + "UTC,0.6,1798675200,17\n");
    ledger.Update({}, 6.0);
    EXPECT_EQ(ledger.Pending().size(), 1U);
}

TEST_F(Ledger, reports_a_line_that_is_no_record) {
    Write("UTC,0.6\n");
    ledger.Update({}, 1.0);
    EXPECT_EQ(ledger.Trouble(), "no record in 2026-12-31_Measurement.csv: UTC,0.6");
}
