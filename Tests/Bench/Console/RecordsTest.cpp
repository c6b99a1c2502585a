#include "Bench/Console/Records.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

constexpr const char* Columns =
    "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,Measurement "
    "Index,Seconds,Nano Seconds,Version (1.2.3.45)";
constexpr const char* Record =
    "UTC 2027-01-01 00:02:11,46388.0015162037,0.249877,0.599705,1499.500000,2001234.250000,1126543.750000,2,1798761731,"
    "123456789";

using Kind = MeasurementReader::Kind;

TEST(Records, record_is_read_by_the_names_of_its_columns) {
    MeasurementReader reader;
    MeasurementRecord record;
    ASSERT_EQ(reader.Read(Columns, record), Kind::Columns);
    ASSERT_EQ(reader.Read(Record, record), Kind::Record);
    EXPECT_EQ(record.index, 2U);
    EXPECT_EQ(record.absorbance, 0.249877);
    EXPECT_EQ(record.chlorine, 0.599705);
    EXPECT_EQ(record.dark, 1499.5);
    EXPECT_EQ(record.reference, 2001234.25);
    EXPECT_EQ(record.reacted, 1126543.75);
}

TEST(Records, columns_in_another_order_are_followed) {
    MeasurementReader reader;
    MeasurementRecord record;
    ASSERT_EQ(reader.Read("Text Date / Time,Measurement Index,Sample Count,Reference Count,Dark "
                          "Count,Chlorine,Absorbance",
                          record),
              Kind::Columns);
    ASSERT_EQ(reader.Read("t,1,2,3,4,5,6", record), Kind::Record);
    EXPECT_EQ(record.index, 1U);
    EXPECT_EQ(record.reacted, 2.0);
    EXPECT_EQ(record.reference, 3.0);
    EXPECT_EQ(record.dark, 4.0);
    EXPECT_EQ(record.chlorine, 5.0);
    EXPECT_EQ(record.absorbance, 6.0);
}

TEST(Records, record_without_columns_before_it_is_unreadable) {
    MeasurementReader reader;
    MeasurementRecord record;
    EXPECT_EQ(reader.Read(Record, record), Kind::Unreadable);
}

TEST(Records, column_line_without_a_column_is_unreadable) {
    MeasurementReader reader;
    MeasurementRecord record;
    EXPECT_EQ(reader.Read("Text Date / Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count", record),
              Kind::Unreadable);
    EXPECT_EQ(reader.Read(Record, record), Kind::Unreadable);
}

TEST(Records, damaged_record_is_unreadable) {
    for (const char* line : {"", "UTC", "t,1,2,3,4,5,6", "t,1,x,3,4,5,6,7,8,9", "t,1,,3,4,5,6,7,8,9",
                             "t,1,nan,3,4,5,6,7,8,9", "t,1,2,3,4,5,6,-7,8,9", "t,1,2,3,4,5,6,7e30,8,9"}) {
        MeasurementReader reader;
        MeasurementRecord record;
        ASSERT_EQ(reader.Read(Columns, record), Kind::Columns);
        EXPECT_EQ(reader.Read(line, record), Kind::Unreadable) << line;
    }
}

TEST(Records, result_line_has_its_fixed_form) {
    const MeasurementRecord record{2, 0.599705, 0.249877, 1499.5, 2001234.25, 1126543.75};
    EXPECT_EQ(ResultLine(record, 0.6, 28.571429),
              "result 2 chlorine 0.5997 sample 0.6000 absorbance 0.24988 dark 1500 reference 2001234 reacted 1126544 "
              "duty 28.57");
}

TEST(Records, result_line_keeps_a_negative_value) {
    const MeasurementRecord record{1, -0.0024, -0.001, 1500, 2000000, 2004610};
    EXPECT_EQ(ResultLine(record, 0.0, 30.0),
              "result 1 chlorine -0.0024 sample 0.0000 absorbance -0.00100 dark 1500 reference 2000000 reacted 2004610 "
              "duty 30.00");
}

TEST(Records, status_line_gives_date_time_and_text) {
    const std::optional<StatusLine> status =
        ReadStatusLine("UTC 2026-12-31 23:57:05.000000001 :: Executing Mixing Step");
    ASSERT_TRUE(status.has_value());
    EXPECT_EQ(status->date, "2026-12-31");
    EXPECT_EQ(status->time, "23:57:05");
    EXPECT_EQ(status->text, "Executing Mixing Step");
}

TEST(Records, other_log_lines_give_no_status) {
    for (const char* line : {"", " :: ", "x :: y", "UTC 2026-12-31 :: y", "UTC 26-12-31 23:57:05.0 :: y",
                             "SystemControl: no time", "UTC 2026-12-31 23:57 :: y"}) {
        EXPECT_FALSE(ReadStatusLine(line).has_value()) << line;
    }
}

TEST(Records, texts_of_a_cycle_are_told_from_others) {
    for (const char* text :
         {"Executing Mixing Step", "LED Adjustment Results: LED DutyCycle = 30.000000%% and LED Adjust Time = 2500ms",
          "End of Measurement Cycle: LED DutyCycle = 28.5%% and LED Adjust Time = 2500ms",
          "Waiting for Next Measurement Initiation", "Aborted Measurement Cycle"}) {
        EXPECT_TRUE(IsCycleStatus(text)) << text;
    }
    EXPECT_FALSE(IsCycleStatus("MeasurementEngine::ProcessCommandMessage  Unable to start measurement control"));
    EXPECT_FALSE(IsCycleStatus("exec"));
}

TEST(Records, running_step_is_named_as_the_status_names_it) {
    EXPECT_EQ(StepOfStatus("Executing Verify Flag (Home Poisition) Step"), "Verify Flag (Home Poisition)");
    EXPECT_EQ(StepOfStatus("Executing  Step"), "");
    EXPECT_FALSE(StepOfStatus("Executing Step").has_value());
    EXPECT_FALSE(StepOfStatus("Waiting for Next Measurement Initiation").has_value());
}

TEST(Records, duty_is_read_with_one_percent_sign_or_two) {
    EXPECT_EQ(DutyOfStatus("End of Measurement Cycle: LED DutyCycle = 28.571429%% and LED Adjust Time = 2500ms"),
              28.571429);
    EXPECT_EQ(DutyOfStatus("End of Measurement Cycle: LED DutyCycle = 28.571429% and LED Adjust Time = 2500ms"),
              28.571429);
    EXPECT_FALSE(DutyOfStatus("End of Measurement Cycle: LED DutyCycle = ").has_value());
    EXPECT_FALSE(DutyOfStatus("End of Measurement Cycle: LED DutyCycle = 28").has_value());
    EXPECT_FALSE(DutyOfStatus("LED Adjustment Results: LED DutyCycle = 30.0%%").has_value());
}

}  // namespace
}  // namespace Bench
