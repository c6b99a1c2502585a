#include "Frameworks/Utilities/Version.h"
#include "System/LoggingControl/RecordFormats.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

#include "Frameworks/Xml/XmlDocument.h"
#include "System/LoggingControl/AlarmInformation.h"

namespace {

constexpr time_t Noon = 1356955199;  // 2012-12-31 11:59:59 UTC

TimeInfo TimeAt(time_t seconds, long nanoSeconds) {
    TimeInfo time;
    timespec value{};
    value.tv_sec = seconds;
    value.tv_nsec = nanoSeconds;
    time = value;
    return time;
}

class RecordFormats : public testing::Test {
protected:
    RecordFormats() {
        setenv("TZ", "MST7", 1);
        tzset();
    }

    static MeasurementResults Results() {
        MeasurementResults results;
        results.SetAbsorbance(0.30103);
        results.SetChlorine(516.2245);
        results.SetDarkCount(1500.25);
        results.SetReferenceCount(5000000.125);
        results.SetSampleCount(-3.5);
        results.SetMeasurementIndex(4000000000U);
        results.SetTime(TimeAt(Noon, 5000000));
        return results;
    }

    static StepParameters Step() {
        StepParameters step;
        step.stepType = REAGENT_ADDITION_STEP;
        step.motorAngle = 90.25F;
        step.motorSpeed = 45;
        return step;
    }

    static std::string StepRecordOf(double count) {
        return StepRecords(StepResults({{count, TimeAt(Noon, 1)}}, Step())).Text();
    }

    static MeasurementStatusInfo Status(const char* text) {
        MeasurementStatusInfo status;
        status.SetText(text);
        status.SetTime(TimeAt(Noon, 123456789));
        return status;
    }
};

}  // namespace

TEST_F(RecordFormats, have_the_columns_of_a_measurement) {
    EXPECT_EQ(MeasurementColumns().Text(),
              "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,Measurement "
              "Index,Seconds,Nano Seconds,Version (" +
                  GetVersionText().Text() + ")\r\n");
}

TEST_F(RecordFormats, have_the_columns_of_a_step) {
    EXPECT_EQ(StepColumns().Text(),
              "Text Date / Time,Xcel Time,Sample,Text Step Description,Step Index,Sample Index,Motor Angle,Motor "
              "Speed,Seconds,Nano Seconds,Version (" +
                  GetVersionText().Text() + ")\r\n");
}

TEST_F(RecordFormats, have_the_columns_of_a_status) {
    EXPECT_EQ(StatusColumns().Text(), "Text Date / Time,Xcel Time,Status Message,Seconds,Nano Seconds,Version (" +
                                          GetVersionText().Text() + ")\r\n");
}

TEST_F(RecordFormats, write_a_measurement_with_local_text_time_and_UTC_serial_day) {
    EXPECT_EQ(MeasurementRecord(Results()).Text(),
              "MST 2012-12-31 04:59:59,    41274.4999884259,0.301030,516.224500,1500.250000,5000000.125000,-3.500000,"
              "4000000000,1356955199,5000000\r\n");
}

TEST_F(RecordFormats, write_a_negative_zero_with_its_sign) {
    MeasurementResults results = Results();
    results.SetAbsorbance(-0.0);
    results.SetChlorine(-0.0);
    EXPECT_EQ(MeasurementRecord(results).Text(),
              "MST 2012-12-31 04:59:59,    41274.4999884259,-0.000000,-0.000000,1500.250000,5000000.125000,-3.500000,"
              "4000000000,1356955199,5000000\r\n");
}

TEST_F(RecordFormats, write_a_measurement_of_day_0_of_the_epoch) {
    MeasurementResults results = Results();
    results.SetTime(TimeAt(0, 0));
    EXPECT_EQ(MeasurementRecord(results).Text(),
              "MST 1969-12-31 17:00:00,    25569.0000000000,0.301030,516.224500,1500.250000,5000000.125000,-3.500000,"
              "4000000000,0,0\r\n");
}

TEST_F(RecordFormats, write_one_line_for_each_sample_of_a_step) {
    const StepResults results({{1500.9, TimeAt(Noon, 1)}, {-7.9, TimeAt(Noon + 1, 999999999)}}, Step());
    EXPECT_EQ(
        StepRecords(results).Text(),
        "MST 2012-12-31 04:59:59,    41274.4999884259,1500,Reagent Addition,12,0, 90.2, 45,1356955199,1\r\n"
        "MST 2012-12-31 05:00:00,    41274.5000000000,-7,Reagent Addition,12,1, 90.2, 45,1356955200,999999999\r\n");
}

TEST_F(RecordFormats, write_nothing_for_a_step_without_samples) {
    EXPECT_EQ(StepRecords(StepResults({}, Step())).Text(), "");
}

TEST_F(RecordFormats, pad_a_small_angle_and_speed_of_a_step) {
    StepParameters step = Step();
    step.motorAngle = 0.0F;
    step.motorSpeed = 0;
    EXPECT_EQ(StepRecords(StepResults({{1.0, TimeAt(Noon, 1)}}, step)).Text(),
              "MST 2012-12-31 04:59:59,    41274.4999884259,1,Reagent Addition,12,0,  0.0,  0,1356955199,1\r\n");
}

TEST_F(RecordFormats, let_a_large_angle_and_speed_of_a_step_grow) {
    StepParameters step = Step();
    step.motorAngle = 123456.0F;
    step.motorSpeed = 4000000000U;
    EXPECT_EQ(
        StepRecords(StepResults({{1.0, TimeAt(Noon, 1)}}, step)).Text(),
        "MST 2012-12-31 04:59:59,    41274.4999884259,1,Reagent Addition,12,0,123456.0,4000000000,1356955199,1\r\n");
}

TEST_F(RecordFormats, leave_the_description_of_a_step_without_a_type_empty) {
    StepParameters step = Step();
    step.stepType = NO_STEP;
    EXPECT_EQ(StepRecords(StepResults({{1.0, TimeAt(Noon, 1)}}, step)).Text(),
              "MST 2012-12-31 04:59:59,    41274.4999884259,1,,-1,0, 90.2, 45,1356955199,1\r\n");
}

TEST_F(RecordFormats, hold_a_sample_within_what_a_signed_integer_can_hold) {
    const char* before = "MST 2012-12-31 04:59:59,    41274.4999884259,";
    const char* after = ",Reagent Addition,12,0, 90.2, 45,1356955199,1\r\n";
    EXPECT_EQ(StepRecordOf(1e300), std::string(before) + "2147483647" + after);
    EXPECT_EQ(StepRecordOf(-1e300), std::string(before) + "-2147483648" + after);
    EXPECT_EQ(StepRecordOf(std::numeric_limits<double>::quiet_NaN()), std::string(before) + "0" + after);
}

TEST_F(RecordFormats, write_a_status_as_it_stands) {
    EXPECT_EQ(StatusRecord(Status("Step - Mixing")).Text(),
              "MST 2012-12-31 04:59:59,    41274.4999884259,Step - Mixing,1356955199,123456789\r\n");
}

TEST_F(RecordFormats, let_a_comma_in_a_status_make_one_more_column) {
    EXPECT_EQ(StatusRecord(Status("a,b")).Text(),
              "MST 2012-12-31 04:59:59,    41274.4999884259,a,b,1356955199,123456789\r\n");
}

TEST_F(RecordFormats, add_a_log_line_to_a_document) {
    XmlDocument document;
    ASSERT_TRUE(document.SetDocumentText("<LOG></LOG>"));
    ASSERT_TRUE(document.FindElement("LOG"));
    ASSERT_TRUE(document.IntoElement());
    LogInfo logInfo;
    logInfo.SetText("a < b");
    logInfo.SetTime(TimeAt(Noon, 5000000));
    logInfo.SetDocument(&document);
    EXPECT_TRUE(WriteLogInfoXML(logInfo));
    EXPECT_EQ(
        document.GetDocumentText(),
        "<LOG>\n<LOG_INFO type=\"logInfo\" value=\"a &lt; b\" time=\"MST 2012-12-31 04:59:59.5000000\"/>\n</LOG>");
}

TEST_F(RecordFormats, add_no_log_line_without_a_document) { EXPECT_FALSE(WriteLogInfoXML(LogInfo())); }

TEST(AlarmInformation, holds_a_text_and_a_time) {
    AlarmInformation alarm;
    alarm.SetText("high");
    alarm.SetTime(TimeAt(Noon, 7));
    EXPECT_EQ(alarm.GetText(), "high");
    EXPECT_EQ(alarm.GetTime(), TimeAt(Noon, 7));
    EXPECT_EQ(alarm.GetDocument(), nullptr);
}
