#include "System/DeviceMonitor/DeviceMonitor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "Frameworks/Configuration/SystemOperationFile.h"
#include "Tests/Support/ReadFile.h"
#include "Tests/System/DeviceMonitor/DeviceMonitorFixture.h"

namespace {

constexpr double TwoHours = 7200.0;

using DeviceMonitorTest = DeviceMonitorFixture;

// The counters are process-wide. The test runner starts a process for each test, which these tests need.
class Counters : public DeviceMonitorFixture {
protected:
    void Run() {
        MessageController::SetLogLevel(DEBUG_LOG_LEVEL);
        Start();
        Send(MOVE_TO_RUNNING);
        WaitForChecks(1);  // the first sets the mark
    }

    // So many from now on; each says that it begins.
    void WaitForChecks(long count) {
        const long before = Ticks();
        EXPECT_TRUE(Board().WaitUntil([&] { return Ticks() > before + count; }));
    }

    Texts Errors() {
        Texts errors;
        for (const std::string& line : witness.Heard()) {
            if (line.rfind("log 3 ", 0) == 0) {
                errors.push_back(line);
            }
        }
        return errors;
    }

    void WaitForFiles(const std::string& hours) {
        EXPECT_TRUE(Board().WaitUntil([&] { return HoursOf(File("backup.")) == hours; }))
            << HoursOf(File("")) << " in place of " << hours;
        EXPECT_EQ(File(""), File("backup."));
    }

    std::string File(const std::string& kind) const {
        return ReadFile(Folder() + "/var/log/vorn/data/analyzer.op." + kind + "xml");
    }

    static std::string ValueOf(const std::string& text, const std::string& name) {
        const std::size_t item = text.find("\"" + name + "\"");
        const std::size_t start = text.find("value=\"", item) + 7;
        return item == std::string::npos ? "" : text.substr(start, text.find('"', start) - start);
    }

    // Of both counters, which go together.
    static std::string HoursOf(const std::string& text) {
        std::string hours = ValueOf(text, "ElectronicsRunHours");
        EXPECT_EQ(ValueOf(text, "RemoteIndicatorRunHours"), hours);
        return hours;
    }

    static std::string CyclesOf(const std::string& text) {
        std::string cycles;
        for (const char* name :
             {"TubingRunCycles", "ColorimeterRunCycles", "SampleConditioningRunCycles", "ReagentDeliveryRunCycles"}) {
            cycles += ValueOf(text, name) + " ";
        }
        return cycles;
    }
};

}  // namespace

TEST_F(DeviceMonitorTest, says_that_it_starts_and_registers) {
    MessageController::SetLogLevel(DEBUG_LOG_LEVEL);
    Start();
    MessageController::SetLogLevel(ERROR_LOG_LEVEL);
    const Texts expected = {"log 7 Initializing Thread for - DeviceMonitor from DeviceMonitor",
                            "log 7 Changing to INITIALIZING_STATE State for - DeviceMonitor from DeviceMonitor",
                            "log 7 Changing to IDLE_STATE State for - DeviceMonitor from DeviceMonitor"};
    EXPECT_TRUE(Board().WaitUntil([&] {
        Texts lines;
        for (const std::string& line : witness.Heard()) {
            if (std::find(expected.begin(), expected.end(), line) != expected.end()) {
                lines.push_back(line);
            }
        }
        return lines == expected;
    })) << testing::PrintToString(witness.Heard());
}

TEST_F(DeviceMonitorTest, logs_a_refused_registration_with_the_origin_RemoteIndicatorControl) {
    Start();
    EXPECT_FALSE(monitor->DoRegistration());  // it has done so
    EXPECT_TRUE(Board().WaitUntil([this] { return !witness.Heard().empty(); }));
    EXPECT_EQ(witness.Heard(), Texts{"log 3 DeviceMonitor::DoRegistration - PERIODIC_HARDWARE_TEST_DATA_MESSAGE "
                                     "failed! from RemoteIndicatorControl"});
}

TEST_F(DeviceMonitorTest, does_not_tick_before_it_has_been_running) {
    MessageController::SetLogLevel(DEBUG_LOG_LEVEL);
    Start();
    LetPass(5.0);
    EXPECT_EQ(Ticks(), 0);
}

TEST_F(DeviceMonitorTest, ticks_each_second_in_every_state_after_the_first_running) {
    MessageController::SetLogLevel(DEBUG_LOG_LEVEL);
    Start();
    for (const CommandType command : {MOVE_TO_RUNNING, MOVE_TO_IDLE, MOVE_TO_TEST, MOVE_TO_SHUTDOWN}) {
        Send(command);
        const long before = Ticks();
        EXPECT_TRUE(Board().WaitUntil([&] { return Ticks() >= before + 4; })) << command;
    }
    Stop();
    EXPECT_EQ(LastEnded().GetTimeOut(), 1000);
}

TEST_F(DeviceMonitorTest, tells_once_when_the_card_comes_and_once_when_it_goes) {
    Start();
    testing::internal::CaptureStdout();
    const auto notice = [] { DeviceMonitor::NoticeCard(0, nullptr, nullptr); };
    notice();
    notice();
    Board().PullCard();
    notice();
    notice();
    Board().InsertCard();
    notice();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "SD card inserted! SD card removed !SD card inserted! ");
}

TEST_F(DeviceMonitorTest, every_notice_of_the_card_sets_the_changed_flag) {
    Start();
    EXPECT_FALSE(cardChanged);
    testing::internal::CaptureStdout();
    DeviceMonitor::NoticeCard(0, nullptr, nullptr);
    EXPECT_TRUE(cardChanged);
    cardChanged = false;
    DeviceMonitor::NoticeCard(0, nullptr, nullptr);
    EXPECT_TRUE(cardChanged);
    testing::internal::GetCapturedStdout();
}

TEST_F(DeviceMonitorTest, what_is_known_of_the_card_outlasts_a_reset) {
    Start();
    testing::internal::CaptureStdout();
    DeviceMonitor::NoticeCard(0, nullptr, nullptr);
    Stop();
    monitor = std::make_unique<DeviceMonitor>();
    DeviceMonitor::NoticeCard(0, nullptr, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "SD card inserted! ");
}

TEST_F(Counters, the_first_check_changes_nothing) {
    Run();
    WaitForChecks(3);
    EXPECT_TRUE(std::filesystem::is_empty(Folder() + "/var/log/vorn/data"));
}

TEST_F(Counters, hours_are_counted_two_at_a_time_and_saved_in_both_files) {
    Run();
    for (const char* hours : {"2.00", "4.00", "6.00"}) {
        Board().JumpClock(TwoHours);
        WaitForFiles(hours);
    }
    EXPECT_EQ(ValueOf(File(""), "SerialNumber"), "123456789");
}

TEST_F(Counters, the_next_mark_is_two_hours_after_the_count) {
    Run();
    Board().JumpClock(10 * TwoHours);
    WaitForFiles("2.00");
    Board().JumpClock(TwoHours - 600.0);
    WaitForChecks(3);
    EXPECT_EQ(HoursOf(File("")), "2.00");
    Board().JumpClock(600.0);
    WaitForFiles("4.00");
}

TEST_F(Counters, a_clock_set_back_waits_for_the_mark_once_more) {
    Run();
    Board().JumpClock(-TwoHours);
    Board().JumpClock(TwoHours - 600.0);
    WaitForChecks(3);
    EXPECT_TRUE(std::filesystem::is_empty(Folder() + "/var/log/vorn/data"));
    Board().JumpClock(TwoHours + 600.0);
    WaitForFiles("2.00");
}

TEST_F(Counters, cycles_are_saved_with_the_hours) {
    Run();
    Send(COLLECT_MEASUREMENT);
    Send(COLLECT_MEASUREMENT);
    Send(COLLECT_MEASUREMENT);
    WaitForChecks(2);
    EXPECT_TRUE(std::filesystem::is_empty(Folder() + "/var/log/vorn/data"));
    Board().JumpClock(TwoHours);
    WaitForFiles("2.00");
    EXPECT_EQ(CyclesOf(File("")), "3 3 3 3 ");
}

TEST_F(Counters, a_cycle_counts_in_every_state) {
    MessageController::SetLogLevel(DEBUG_LOG_LEVEL);
    Start();
    for (const CommandType command : {MOVE_TO_IDLE, MOVE_TO_SHUTDOWN, MOVE_TO_TEST, MOVE_TO_RUNNING}) {
        Send(command);
        Send(COLLECT_MEASUREMENT);
    }
    WaitForChecks(2);
    Board().JumpClock(TwoHours);
    WaitForFiles("2.00");
    EXPECT_EQ(CyclesOf(File("")), "4 4 4 4 ");
}

TEST_F(Counters, the_mark_and_the_cycles_outlast_a_reset) {
    Run();
    Send(COLLECT_MEASUREMENT);
    WaitForChecks(1);
    Stop();
    Board().JumpClock(TwoHours);
    monitor = std::make_unique<DeviceMonitor>();
    Send(COLLECT_MEASUREMENT);
    Send(MOVE_TO_RUNNING);
    WaitForFiles("2.00");
    EXPECT_EQ(CyclesOf(File("")), "2 2 2 2 ");
}

TEST_F(Counters, are_skipped_silently_without_the_operation_file) {
    const std::string path = Folder() + "/var/log/vorn/data/analyzer.op.xml";
    std::ofstream(path) << "<ROOT_USER/>";
    Run();
    Send(COLLECT_MEASUREMENT);
    Board().JumpClock(TwoHours);
    WaitForChecks(3);
    std::filesystem::remove(path);
    WaitForChecks(3);
    EXPECT_TRUE(std::filesystem::is_empty(Folder() + "/var/log/vorn/data"));
    Board().JumpClock(TwoHours);
    WaitForFiles("2.00");
    EXPECT_EQ(CyclesOf(File("")), "0 0 0 0 ");
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(Counters, a_failed_save_is_made_up_by_the_next_one) {
    Run();
    std::filesystem::remove(Folder() + "/var/log/vorn/data");
    Board().JumpClock(TwoHours);
    WaitForChecks(3);
    std::filesystem::create_directory(Folder() + "/var/log/vorn/data");
    Board().JumpClock(TwoHours);
    WaitForFiles("4.00");
    EXPECT_EQ(Errors(), Texts{});
}
