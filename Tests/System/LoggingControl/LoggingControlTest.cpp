#include "System/LoggingControl/LoggingControl.h"

#include "Frameworks/Messaging/DataMessageOf.h"
#include "Tests/System/LoggingControl/LoggingControlFixture.h"

namespace {

class LoggingControlTest : public LoggingControlFixture {
protected:
    // The process-wide level that the setting leads to.
    std::int32_t LevelFor(const std::string& setting, std::int32_t before) {
        MessageController::SetLogLevel(before);
        settings["LoggingLevel"] = setting;
        LoadSettings();
        Launch();
        PostLine("settings are read", ERROR_LOG_LEVEL);
        WaitForLine("settings are read");
        Stop();
        return MessageController::GetLogLevel();
    }

    Bench::LogLine LineOf(const StdString& text, LogLevel level) {
        Board().ClearLog();
        PostLine(text, level);
        EXPECT_TRUE(Board().WaitUntil([this] { return !Board().Log().empty(); }));
        return Board().Log().at(0);
    }
};

class DeviceErrorMessage : public DataMessageOf<DeviceErrorMessage, DEVICE_ERROR_DATA_MESSAGE> {};
class SystemErrorMessage : public DataMessageOf<SystemErrorMessage, SYSTEM_ERROR_DATA_MESSAGE> {};
class WatchdogErrorMessage : public DataMessageOf<WatchdogErrorMessage, WATCHDOG_ERROR_DATA_MESSAGE> {};
class JustAMessage : public DataMessageOf<JustAMessage, TRANSFER_DATA_TO_SD_CARD_MESSAGE> {};

}  // namespace

TEST_F(LoggingControlTest, opens_the_system_log_with_its_identity_and_options) {
    Start();
    const Bench::LogLine line = LineOf("text", ERROR_LOG_LEVEL);
    EXPECT_EQ(line.ident, "Vernicor");
    EXPECT_EQ(line.options, 43);
    EXPECT_EQ(line.facility, LOG_USER);
}

TEST_F(LoggingControlTest, lets_all_eight_priorities_pass) {
    setlogmask(LOG_MASK(LOG_ERR));
    Start();
    EXPECT_EQ(setlogmask(0), 255);
}

TEST_F(LoggingControlTest, writes_time_and_text_of_a_line) {
    Start();
    EXPECT_EQ(LineOf("some text", NOTICE_LOG_LEVEL).text, "MST 2012-12-31 04:59:59.5000000 :: some text");
}

TEST_F(LoggingControlTest, passes_the_level_on_as_the_priority) {
    Start();
    for (std::int32_t level = 0; level < LogLevelCount; ++level) {
        EXPECT_EQ(LineOf("text", static_cast<LogLevel>(level)).priority, level);
    }
}

TEST_F(LoggingControlTest, passes_the_line_to_the_system_log_as_the_format) {
    Start();
    EXPECT_EQ(LineOf("100%% done", ERROR_LOG_LEVEL).format, "MST 2012-12-31 04:59:59.5000000 :: 100%% done");
    EXPECT_EQ(LineOf("100%% done", ERROR_LOG_LEVEL).text, "MST 2012-12-31 04:59:59.5000000 :: 100% done");
}

TEST_F(LoggingControlTest, survives_a_line_that_asks_for_arguments) {
    Start();
    EXPECT_EQ(LineOf("%n%s%1$n", ERROR_LOG_LEVEL).text, "MST 2012-12-31 04:59:59.5000000 :: %n%s%1$n");
}

TEST_F(LoggingControlTest, refuses_a_line_of_level_9) {
    settings["LoggingLevel"] = "RUMOR_LOG_LEVEL";
    Start();
    PostLine("never seen", static_cast<LogLevel>(9));
    WaitForLine("Invalid Log Message Type from - MeasurementEngine");
    for (const Bench::LogLine& line : Board().Log()) {
        EXPECT_NE(TextOf(line), "never seen");
        if (TextOf(line) == "Invalid Log Message Type from - MeasurementEngine") {
            EXPECT_EQ(line.priority, DEBUG_LOG_LEVEL);
        }
    }
}

TEST_F(LoggingControlTest, refuses_a_line_below_level_0) {
    settings["LoggingLevel"] = "RUMOR_LOG_LEVEL";
    Start();
    PostLine("never seen", NO_LOG_LEVEL);
    WaitForLine("Invalid Log Message Type from - MeasurementEngine");
}

TEST_F(LoggingControlTest, sets_the_log_level_by_each_of_nine_names) {
    for (std::int32_t level = 0; level < LogLevelCount; ++level) {
        EXPECT_EQ(LevelFor(LogLevelNames[level].Text(), (level + 1) % LogLevelCount), level);
        Board().ClearLog();
    }
}

TEST_F(LoggingControlTest, keeps_the_log_level_for_an_unknown_name) { EXPECT_EQ(LevelFor("ERROR_LOG_LEVE", 6), 6); }

TEST_F(LoggingControlTest, keeps_the_log_level_for_a_name_in_another_case) {
    EXPECT_EQ(LevelFor("error_log_level", 6), 6);
}

TEST_F(LoggingControlTest, is_subscribed_to_seven_types) {
    Start();
    for (const DataMessageType type :
         {MEASUREMENT_DATA_MESSAGE, MEASUREMENT_STEP_DATA_MESSAGE, MEASUREMENT_STATUS_MESSAGE, LOGGING_DATA_MESSAGE,
          DEVICE_ERROR_DATA_MESSAGE, SYSTEM_ERROR_DATA_MESSAGE, WATCHDOG_ERROR_DATA_MESSAGE}) {
        EXPECT_FALSE(Router().RegisterDataMessage(&Logging(), type)) << type << " is registered already";
    }
    EXPECT_TRUE(Router().RegisterDataMessage(&Logging(), GUI_RESPONSE_DATA_MESSAGE));
}

TEST_F(LoggingControlTest, logs_nothing_for_error_messages_and_unknown_types) {
    Start();
    Post(std::make_unique<DeviceErrorMessage>());
    Post(std::make_unique<SystemErrorMessage>());
    Post(std::make_unique<WatchdogErrorMessage>());
    Post(std::make_unique<JustAMessage>());
    EXPECT_EQ(Lines(), Texts{});
}

TEST_F(LoggingControlTest, ends_where_its_section_is_missing) {
    LoggingControl logging;  // no settings are loaded, and there is no router
    pthread_join(logging.GetThreadId(), nullptr);
    EXPECT_EQ(logging.GetState(), POST_EXITING_STATE);
}

TEST_F(LoggingControlTest, closes_its_files_and_unmounts_the_card_at_its_end) {
    Start();
    PostMeasurement(1);
    PostStep({1.0});
    PostStatus("text");
    Sync();
    EXPECT_TRUE(Board().Card().mounted);
    Stop();
    EXPECT_FALSE(Board().Card().mounted);
}
