#include "Frameworks/Utilities/Version.h"
#include "Tests/System/LoggingControl/LoggingControlFixture.h"

namespace {

constexpr char MeasurementFile[] = "2012-12-31_Measurement.csv";
constexpr char StepFile[] = "2012-12-31_Step.csv";
constexpr char StatusFile[] = "2012-12-31_Status.csv";

const std::string MeasurementColumnLine =
    "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,Measurement Index,Seconds,"
    "Nano Seconds,Version (" +
    GetVersionText().Text() + ")\r\n";
const std::string StepColumnLine =
    "Text Date / Time,Xcel Time,Sample,Text Step Description,Step Index,Sample Index,Motor Angle,Motor Speed,Seconds,"
    "Nano Seconds,Version (" +
    GetVersionText().Text() + ")\r\n";
const std::string StatusColumnLine =
    "Text Date / Time,Xcel Time,Status Message,Seconds,Nano Seconds,Version (" + GetVersionText().Text() + ")\r\n";

constexpr char WrittingMeasurement[] =
    "LoggingControl::ProcessDataMessage :: Problem writting measurement data to file";
constexpr char WrittingStep[] = "LoggingControl::ProcessDataMessage :: Problem writting step data to file";
constexpr char WrittingStatus[] = "LoggingControl::ProcessDataMessage :: Problem writting status data to file";

std::string MeasurementLine(int index) {
    return "MST 2012-12-31 04:59:59,    41274.4999884259,0.000000,0.500000,0.000000,0.000000,0.000000," +
           std::to_string(index) + ",1356955199,7\r\n";
}

std::string StepLine(int count, int index) {
    return "MST 2012-12-31 04:59:59,    41274.4999884259," + std::to_string(count) + ",Mixing,14," +
           std::to_string(index) + ",  0.0,  0,1356955199,7\r\n";
}

std::string StatusLine(const std::string& text) {
    return "MST 2012-12-31 04:59:59,    41274.4999884259," + text + ",1356955199,7\r\n";
}

class DataFiles : public LoggingControlFixture {
protected:
    // Whether a measurement is logged with that flag.
    bool IsLogged(const std::string& flag) {
        settings["LogMeasurementData"] = flag;
        Start();
        PostMeasurement(1);
        Sync();
        return IsOnCard(MeasurementFile);
    }

    void SetFormats(const std::string& format) {
        settings["LogMeasurementDataFileFormat"] = format;
        settings["LogMeasurementStepDataFileFormat"] = format;
        settings["LogStatusDataFileFormat"] = format;
    }

    void PostEachKind() {
        PostMeasurement(1);
        PostStep({1.0});
        PostStatus("text");
    }
};

// What the controller says of each record in a format that it can't write.
const Texts InvalidFormatLines = {
    "LoggingControl::WriteMeasurementData :: Invalid Measurement Data Log format NO data will be logged",
    WrittingMeasurement,
    "LoggingControl::WriteStepData :: Invalid Step Data Log format NO data will be logged",
    WrittingStep,
    "LoggingControl::WriteStatusData :: Invalid Status Data Log format NO data will be logged",
    WrittingStatus,
};

class UnwritableFormats : public DataFiles, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_F(DataFiles, take_a_line_for_each_measurement_below_one_column_line) {
    Start();
    PostMeasurement(1);
    PostMeasurement(2);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(2));
}

TEST_F(DataFiles, take_a_line_for_each_sample_of_a_step) {
    Start();
    PostStep({10.9, -20.9});
    PostStep({30.0});
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(StepFile), StepColumnLine + StepLine(10, 0) + StepLine(-20, 1) + StepLine(30, 0));
}

TEST_F(DataFiles, get_only_the_column_line_for_a_step_without_samples) {
    Start();
    PostStep({});
    Post(std::make_unique<MeasurementStepDataMessage>());
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(StepFile), StepColumnLine);
}

TEST_F(DataFiles, take_a_line_for_each_status) {
    Start();
    PostStatus("first");
    PostStatus("second, with a comma");
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(StatusFile), StatusColumnLine + StatusLine("first") + StatusLine("second, with a comma"));
}

TEST_F(DataFiles, let_each_status_go_to_the_system_log_too) {
    settings["LogStatusData"] = "off";
    Start();
    PostStatus("in both");
    WaitForLine("in both");
    for (const Bench::LogLine& line : Board().Log()) {
        if (TextOf(line) == "in both") {
            EXPECT_EQ(line.text, "MST 2012-12-31 04:59:59.7 :: in both");
            EXPECT_EQ(line.priority, 7);
        }
    }
    EXPECT_FALSE(IsOnCard(StatusFile));
}

TEST_F(DataFiles, are_logged_for_yes_in_any_mix_of_capitals) { EXPECT_TRUE(IsLogged("yEs")); }

TEST_F(DataFiles, are_logged_for_true) { EXPECT_TRUE(IsLogged("TRUE")); }

TEST_F(DataFiles, are_logged_for_on) { EXPECT_TRUE(IsLogged("On")); }

TEST_F(DataFiles, are_logged_for_1) { EXPECT_TRUE(IsLogged("1")); }

TEST_F(DataFiles, are_not_logged_for_off) { EXPECT_FALSE(IsLogged("off")); }

TEST_F(DataFiles, are_not_logged_for_an_empty_flag) { EXPECT_FALSE(IsLogged("")); }

TEST_F(DataFiles, are_not_logged_for_a_number_that_is_not_1) { EXPECT_FALSE(IsLogged("2")); }

TEST_F(DataFiles, leave_the_card_alone_while_nothing_is_logged) {
    settings["LogMeasurementData"] = "false";
    settings["LogMeasurementStepData"] = "false";
    settings["LogStatusData"] = "false";
    SetFormats("TEXT");
    Start();
    PostEachKind();
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_FALSE(Board().Card().mounted);
}

TEST_F(DataFiles, are_neither_made_nor_missed_in_XML) {
    SetFormats("XML");
    Start();
    PostEachKind();
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_FALSE(IsOnCard(MeasurementFile) || IsOnCard(StepFile) || IsOnCard(StatusFile));
}

TEST_P(UnwritableFormats, are_reported_with_each_record) {
    SetFormats(GetParam());
    Start();
    PostEachKind();
    EXPECT_EQ(Lines(), InvalidFormatLines);
    Board().ClearLog();
    PostEachKind();
    EXPECT_EQ(Lines(), InvalidFormatLines);
    EXPECT_FALSE(IsOnCard(MeasurementFile) || IsOnCard(StepFile) || IsOnCard(StatusFile));
}

INSTANTIATE_TEST_SUITE_P(DataFiles, UnwritableFormats, testing::Values("TEXT", "BINARY", "csv", "JSON", ""));

TEST_F(DataFiles, begin_anew_with_the_first_record_of_a_local_day) {
    Start();
    PostMeasurement(1);
    Sync();
    Board().JumpClock(19 * 3600);  // 23:59:59 and a little, or just past midnight
    Board().JumpClock(3600);
    PostMeasurement(2);
    PostMeasurement(3);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1));
    EXPECT_EQ(OnCard("2013-01-01_Measurement.csv"), MeasurementColumnLine + MeasurementLine(2) + MeasurementLine(3));
}

TEST_F(DataFiles, go_on_over_midnight_in_UTC) {
    Start();
    PostMeasurement(1);
    Sync();
    Board().JumpClock(13 * 3600);  // 2013-01-01 01:00 UTC, the evening before in local time
    PostMeasurement(2);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(2));
}

TEST_F(DataFiles, begin_a_new_day_each_for_itself) {
    Start();
    PostEachKind();
    Sync();
    Board().JumpClock(24 * 3600);
    PostStatus("next day");
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard("2013-01-01_Status.csv"), StatusColumnLine + StatusLine("next day"));
    EXPECT_FALSE(IsOnCard("2013-01-01_Measurement.csv"));
}

TEST_F(DataFiles, continue_after_a_restart_without_a_second_column_line) {
    Start();
    PostEachKind();
    Sync();
    Stop();
    Start();
    PostEachKind();
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(1));
    EXPECT_EQ(OnCard(StepFile), StepColumnLine + StepLine(1, 0) + StepLine(1, 0));
    EXPECT_EQ(OnCard(StatusFile), StatusColumnLine + StatusLine("text") + StatusLine("text"));
}

TEST_F(DataFiles, fail_with_each_record_while_no_card_is_in_the_slot) {
    Board().PullCard();
    Start();
    PostEachKind();
    EXPECT_EQ(Lines(), (Texts{WrittingMeasurement, WrittingStep, WrittingStatus}));
}

TEST_F(DataFiles, begin_when_the_card_comes) {
    Board().PullCard();
    Start();
    PostMeasurement(1);
    Sync();
    Board().InsertCard();
    Board().ClearLog();
    PostMeasurement(2);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(2));
}

TEST_F(DataFiles, drop_one_record_silently_when_the_card_is_removed) {
    Start();
    PostMeasurement(1);
    Sync();
    Board().PullCard();
    PostMeasurement(2);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_FALSE(Board().Card().mounted);
    PostMeasurement(3);
    EXPECT_EQ(Lines(), Texts{WrittingMeasurement});
}

TEST_F(DataFiles, go_on_in_the_same_file_when_the_card_comes_back) {
    Start();
    PostMeasurement(1);
    Sync();
    Board().PullCard();
    PostMeasurement(2);
    Sync();
    Board().InsertCard();
    PostMeasurement(3);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(3));
}

TEST_F(DataFiles, continue_in_the_same_file_after_the_card_returns) {
    Start();
    PostMeasurement(1);
    Sync();
    Board().PullCard();
    Board().InsertCard();
    PostMeasurement(2);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(2));
}

TEST_F(DataFiles, keep_a_removed_card_mounted_until_all_are_closed) {
    Start();
    PostEachKind();
    Sync();
    Board().PullCard();
    PostEachKind();
    EXPECT_EQ(Lines(), (Texts{"LoggingControl::WriteMeasurementData :: Problem writing data to CSV file",
                              WrittingMeasurement, "", WrittingStep}));
    EXPECT_FALSE(Board().Card().mounted);
}

TEST_F(DataFiles, all_go_on_when_the_card_comes_back) {
    Start();
    PostEachKind();
    Sync();
    Board().PullCard();
    PostEachKind();
    Sync();
    Board().InsertCard();
    Board().ClearLog();
    PostEachKind();
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(1));
    EXPECT_EQ(OnCard(StepFile), StepColumnLine + StepLine(1, 0) + StepLine(1, 0));
    EXPECT_EQ(OnCard(StatusFile), StatusColumnLine + StatusLine("text") + StatusLine("text"));
}

TEST_F(DataFiles, report_each_record_that_a_full_card_has_no_room_for) {
    Start();
    PostEachKind();
    Sync();
    Board().SetCardFull(true);
    PostEachKind();
    EXPECT_EQ(Lines(), (Texts{"LoggingControl::WriteMeasurementData :: Problem writing data to CSV file",
                              WrittingMeasurement, "", WrittingStep,
                              "LoggingControl::WriteStatusData :: Problem writing data to CSV file", WrittingStatus}));
    Board().SetCardFull(false);
    Board().ClearLog();
    PostMeasurement(2);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(2));
}

TEST_F(DataFiles, write_the_record_after_a_failed_column_line) {
    Start();
    PostEachKind();  // opens the files
    Sync();
    for (const char* name : {MeasurementFile, StepFile, StatusFile}) {
        std::filesystem::resize_file(Folder() + "/card/" + name, 0);
    }
    ASSERT_TRUE(Board().FailCall("write", 1, ENOSPC));
    PostMeasurement(2);
    Sync();
    ASSERT_TRUE(Board().FailCall("write", 1, ENOSPC));
    PostStep({2.0});
    Sync();
    ASSERT_TRUE(Board().FailCall("write", 1, ENOSPC));
    PostStatus("second");
    EXPECT_EQ(Lines(),
              (Texts{"LoggingControl::WriteMeasurementData :: Problem writing column information data to CSV file",
                     "LoggingControl::WriteStepData :: Problem writing column information data to CSV file",
                     "LoggingControl::WriteStatusData :: Problem writing column information data to CSV file"}));
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementLine(2));
    EXPECT_EQ(OnCard(StepFile), StepLine(2, 0));
    EXPECT_EQ(OnCard(StatusFile), StatusLine("second"));
}

TEST_F(DataFiles, fail_on_a_card_that_is_write_protected) {
    Board().SetCardWriteProtected(true);
    Start();
    PostMeasurement(1);
    EXPECT_EQ(Lines(), Texts{WrittingMeasurement});
}

TEST_F(DataFiles, have_their_records_in_time_order_on_a_slow_card) {
    Board().SetCardSlow(20);
    Start();
    PostMeasurement(1);
    PostMeasurement(2);
    EXPECT_EQ(Lines(), Texts{});
    EXPECT_EQ(OnCard(MeasurementFile), MeasurementColumnLine + MeasurementLine(1) + MeasurementLine(2));
}
