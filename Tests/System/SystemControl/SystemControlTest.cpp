#include "System/SystemControl/SystemControl.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "Tests/Support/SystemFixture.h"

namespace {

std::size_t EntriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class System : public SystemOnBoard {
protected:
    System() : SystemOnBoard(50.0) {}
};

}  // namespace

TEST_F(System, comes_up_idle_and_says_what_it_creates_and_registers) {
    Start();
    WaitForIdle();
    std::vector<std::string> expected = {"Registering All Commands for - SystemControl",
                                         "Changing to IDLE_STATE State for - SystemControl",
                                         "Sending Command - MOVE_TO_IDLE"};
    for (const char* name : {"MessagingControl", "LoggingControl", "DeviceMonitor", "UserInterfaceDataControl",
                             "SystemMonitor", "RemoteIndicatorControl", "TestInterface", "MeasurementEngine"}) {
        expected.push_back(std::string("Thread Created - ") + name);
        expected.push_back(std::string("Registering All Commands for - ") + name);
        expected.push_back(std::string("Changing to IDLE_STATE State for - ") + name);
    }
    // One line frees those from before LoggingControl came up, and is lost. It may be any of these.
    const std::vector<std::string> lines = Lines();
    std::vector<std::string> missing;
    for (const std::string& line : expected) {
        if (std::find(lines.begin(), lines.end(), line) == lines.end()) {
            missing.push_back(line);
        }
    }
    EXPECT_LE(missing.size(), 1U) << testing::PrintToString(missing);
    EXPECT_EQ(CountOf("Improper Number of Threads Created - SystemControl"), 0);
}

TEST_F(System, follows_the_commands_through_its_states) {
    Start();
    WaitForIdle();
    Send(MOVE_TO_SHUTDOWN);
    WaitFor("Changing to SHUTDOWN_STATE State for - SystemControl");
    WaitFor("Changing to SHUTDOWN_STATE State for - LoggingControl");
    Send(MOVE_TO_TEST);
    WaitFor("Changing to TEST_STATE State for - SystemControl");
    Board().ClearLog();
    Send(MOVE_TO_IDLE);
    WaitFor("Changing to IDLE_STATE State for - SystemControl");
}

TEST_F(System, asks_for_a_measurement_when_it_starts_running) {
    Start();
    WaitForIdle();
    Send(MOVE_TO_RUNNING);
    WaitFor("Changing to RUNNING_STATE State for - SystemControl");
    WaitFor("Sending Command - COLLECT_MEASUREMENT");
}

TEST_F(System, stays_idle_without_automatic_start) {
    Start();
    WaitForIdle();
    EXPECT_EQ(system->GetTimeOut(), -1);
    const double start = Board().Seconds();
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > start + 60.0; }));
    EXPECT_EQ(system->GetState(), IDLE_STATE);
    EXPECT_EQ(CountOf("Processing TimeOut for - SystemControl"), 0);
}

TEST_F(System, starts_by_itself_primes_after_5_s_and_collects_after_60_s_more) {
    configuration.Set("AutoStartMeasurement", "true").Set("AutoStartDelay", "3000");
    Start();
    WaitFor("Sending Command - COLLECT_MEASUREMENT", 2);
    const int running = TimeOf("Sending Command - MOVE_TO_RUNNING");
    EXPECT_NEAR(TimeOf("Sending Command - PRIME_SYSTEM") - running, 5, 2);
    EXPECT_NEAR(TimeOf("Sending Command - COLLECT_MEASUREMENT") - running, 65, 3);
    // Its own copy of MOVE_TO_RUNNING is handled only now, and asks once more.
    WaitFor("Changing to RUNNING_STATE State for - SystemControl");
    WaitFor("Processing TimeOut for - SystemControl");
    const std::vector<std::string> lines = Lines();
    EXPECT_LT(std::find(lines.begin(), lines.end(), "Sending Command - COLLECT_MEASUREMENT"),
              std::find(lines.begin(), lines.end(), "Changing to RUNNING_STATE State for - SystemControl"));
}

TEST_F(System, an_automatic_start_waits_until_the_system_is_idle) {
    configuration.Set("AutoStartMeasurement", "true").Set("AutoStartDelay", "200000");
    Start();
    WaitForIdle();
    system->SetState(TEST_STATE);
    Board().SetSpeed(1000.0);
    WaitFor("Processing TimeOut for - SystemControl", 2);
    EXPECT_EQ(CountOf("Sending Command - MOVE_TO_RUNNING"), 0);
}

TEST_F(System, a_reset_ends_every_thread_and_reads_the_settings_again) {
    Start();
    WaitForIdle();
    Send(RESET_SYSTEM);
    WaitFor("Resetting the System from - SystemControl");
    WaitFor("Killing Thread for - MeasurementEngine");
    JoinAndDestroy();
    EXPECT_EQ(MessageBase::GetMessagingControl(), nullptr);

    configuration.Set("LoggingLevel", "NOTICE_LOG_LEVEL");
    Start();
    EXPECT_TRUE(Board().WaitUntil([] { return MessageController::GetLogLevel() == NOTICE_LOG_LEVEL; }));
    EXPECT_TRUE(Board().WaitUntil([&] { return system->GetState() == IDLE_STATE; }));
}

TEST_F(System, many_resets_leave_nothing_over) {
    Board().SetSpeed(200.0);
    configuration.Set("LoggingLevel", "NOTICE_LOG_LEVEL");
    Start();
    EXPECT_TRUE(Board().WaitUntil([&] { return system->GetState() == IDLE_STATE; }));
    Reset();
    const std::size_t threads = EntriesOf("/proc/self/task");
    const std::size_t descriptors = EntriesOf("/proc/self/fd");
    for (int count = 0; count < RESETS; ++count) {
        Start();
        ASSERT_TRUE(Board().WaitUntil([&] { return system->GetState() == IDLE_STATE; })) << "generation " << count;
        Reset();
    }
    // A thread that was joined may be listed a moment longer, in the first count too.
    EXPECT_TRUE(Board().WaitUntil([&] { return EntriesOf("/proc/self/task") <= threads; }));
    EXPECT_EQ(EntriesOf("/proc/self/fd"), descriptors);
}

TEST_F(System, without_a_settings_file_ends_at_once) {
    system = std::make_unique<SystemControl>();
    JoinAndDestroy();
    EXPECT_TRUE(Board().Log().empty());
}

TEST_F(System, with_ill_formed_settings_ends_at_once) {
    configuration.Replace("</ROOT_ANALYZER>", "");
    Start();
    JoinAndDestroy();
}

TEST_F(System, without_the_root_element_ends_at_once) {
    configuration.Replace("<ROOT_ANALYZER>", "<ROOT_OTHER>").Replace("</ROOT_ANALYZER>", "</ROOT_OTHER>");
    Start();
    JoinAndDestroy();
}

TEST_F(System, without_its_own_section_ends_at_once) {
    configuration.RemoveSection("SYSTEM_CONTROL_INFO");
    Start();
    JoinAndDestroy();
}

TEST_F(System, runs_without_a_section_that_nobody_reads) {
    configuration.RemoveSection("WEB_INTERFACE_INFO");
    Start();
    WaitForIdle();
}
