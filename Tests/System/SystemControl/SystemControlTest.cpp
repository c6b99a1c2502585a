#include "System/SystemControl/SystemControl.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/LogInfoMessage.h"
#include "System/Messages/MeasurementMessage.h"
#include "Tests/Support/SystemFixture.h"

namespace {

std::size_t EntriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class System : public SystemOnBoard {
protected:
    System() : SystemOnBoard(50.0) {}

    // No router was ever made known, no line logged, and no thread is left.
    void ExpectEndWithoutControllers() {
        JoinAndDestroy();
        EXPECT_EQ(MessageBase::GetMessagingControl(), nullptr);
        EXPECT_EQ(SingletonBase::GetSystemConfiguration(), nullptr);
        EXPECT_TRUE(Board().Log().empty());
    }

    // The names in the lines that begin so, in the order of the log.
    std::vector<std::string> NamesAfter(const std::string& start) const {
        std::vector<std::string> names;
        for (const std::string& line : Lines()) {
            if (line.rfind(start, 0) == 0) {
                names.push_back(line.substr(start.size()));
            }
        }
        return names;
    }

    // The names in the order of the log, of which at most one is lost: its line freed those before LoggingControl.
    void ExpectOrder(const std::string& start, const std::vector<std::string>& expected) const {
        const std::vector<std::string> names = NamesAfter(start);
        EXPECT_GE(names.size() + 1, expected.size()) << testing::PrintToString(names);
        auto next = expected.begin();
        for (const std::string& name : names) {
            next = std::find(next, expected.end(), name);
            ASSERT_NE(next, expected.end()) << name << " in " << testing::PrintToString(names);
            ++next;
        }
    }

    void Queue(CommandType command) {
        auto message = std::make_unique<CommandMessage>(command);
        message->SetSource(system.get());
        message->SetDestination(system.get());
        EXPECT_TRUE(MessageBase::Send(std::move(message)));
    }

    static std::vector<std::string> Created() {
        return {"MessagingControl", "LoggingControl",         "DeviceMonitor", "UserInterfaceDataControl",
                "SystemMonitor",    "RemoteIndicatorControl", "TestInterface", "MeasurementEngine"};
    }
};

constexpr char Collect[] = "Sending Command - COLLECT_MEASUREMENT";

}  // namespace

TEST_F(System, becomes_idle_and_logs_what_it_creates_and_registers) {
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
    // One line releases those before LoggingControl, and is lost. It may be any of these.
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
    WaitFor(Collect);
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

TEST_F(System, started_automatically_primes_after_5_s_and_collects_60_s_later) {
    configuration.Set("AutoStartMeasurement", "true").Set("AutoStartDelay", "3000");
    Start();
    WaitFor(Collect, 2);
    const int running = TimeOf("Sending Command - MOVE_TO_RUNNING");
    EXPECT_NEAR(TimeOf("Sending Command - PRIME_SYSTEM") - running, 5, 2);
    EXPECT_NEAR(TimeOf(Collect) - running, 65, 3);
    // Its own copy of MOVE_TO_RUNNING is handled only now and asks once more.
    WaitFor("Changing to RUNNING_STATE State for - SystemControl");
    WaitFor("Processing TimeOut for - SystemControl");
    const std::vector<std::string> lines = Lines();
    EXPECT_LT(std::find(lines.begin(), lines.end(), Collect),
              std::find(lines.begin(), lines.end(), "Changing to RUNNING_STATE State for - SystemControl"));
    // It does so once.
    EXPECT_EQ(system->GetTimeOut(), -1);
    system->SetState(IDLE_STATE);
    EXPECT_TRUE(system->ProcessTimeOut());
    WaitFor("Processing TimeOut for - SystemControl", 2);
    EXPECT_EQ(CountOf("Sending Command - MOVE_TO_RUNNING"), 1);
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

TEST_F(System, creates_and_registers_in_order) {
    Start();
    WaitForIdle();
    ExpectOrder("Thread Created - ", Created());
    std::vector<std::string> registered = Created();
    registered.insert(registered.begin(), "SystemControl");
    ExpectOrder("Registering All Commands for - ", registered);
}

// Slower than real time, so that every line passes the router and the log before they end.
TEST_F(System, a_reset_kills_in_reverse_order_with_two_pauses) {
    Start();
    WaitForIdle();
    Board().SetSpeed(0.5);
    const double start = Board().Seconds();
    Reset();
    EXPECT_GE(Board().Seconds() - start, 2.0);
    std::vector<std::string> killed = NamesAfter("Killing Thread for - ");
    const std::vector<std::string> controllers = Created();
    std::erase_if(killed, [&](const std::string& name) {
        return std::find(controllers.begin(), controllers.end(), name) == controllers.end();
    });
    EXPECT_EQ(killed, (std::vector<std::string>{"MeasurementEngine", "TestInterface", "RemoteIndicatorControl",
                                                "SystemMonitor", "UserInterfaceDataControl", "DeviceMonitor"}));
}

// The second finds no router to wait for: one pause more.
TEST_F(System, carries_out_a_second_reset_that_is_queued) {
    Start();
    WaitForIdle();
    Board().SetSpeed(1.0);
    const double start = Board().Seconds();
    Queue(RESET_SYSTEM);
    Queue(RESET_SYSTEM);
    JoinAndDestroy();
    EXPECT_GE(Board().Seconds() - start, 3.0);
}

TEST_F(System, asks_for_the_next_measurement_after_a_result_while_it_runs) {
    Start();
    WaitForIdle();
    MeasurementMessage result;
    for (const ThreadState state : {IDLE_STATE, SHUTDOWN_STATE, TEST_STATE}) {
        system->SetState(state);
        EXPECT_TRUE(system->ProcessDataMessage(&result));
    }
    system->SetState(RUNNING_STATE);
    LogInfoMessage other;
    EXPECT_TRUE(system->ProcessDataMessage(&other));
    WaitFor("Changing to RUNNING_STATE State for - SystemControl");
    EXPECT_EQ(CountOf(Collect), 0);
    EXPECT_TRUE(system->ProcessDataMessage(&result));
    WaitFor(Collect);
}

TEST_F(System, waits_without_limit_after_SHUTDOWN_TEST_and_RESET) {
    system = std::make_unique<SystemControl>();  // without settings its thread ends
    EXPECT_EQ(pthread_join(system->GetThreadId(), nullptr), 0);
    const std::pair<CommandType, std::int32_t> rows[] = {
        {MOVE_TO_IDLE, 7}, {MOVE_TO_RUNNING, 7}, {MOVE_TO_SHUTDOWN, -1}, {MOVE_TO_TEST, -1}, {RESET_SYSTEM, -1}};
    for (const auto& [type, timeOut] : rows) {
        system->SetTimeOut(7);
        CommandMessage command(type);
        EXPECT_TRUE(system->ProcessCommandMessage(&command));
        EXPECT_EQ(system->GetTimeOut(), timeOut) << CommandNames[type].Text();
    }
    system.reset();
}

TEST_F(System, many_resets_leak_nothing) {
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
    // A joined thread may be listed a moment longer, in the first count too.
    EXPECT_TRUE(Board().WaitUntil([&] { return EntriesOf("/proc/self/task") <= threads; }));
    EXPECT_EQ(EntriesOf("/proc/self/fd"), descriptors);
}

TEST_F(System, without_a_settings_file_creates_nothing) {
    system = std::make_unique<SystemControl>();
    ExpectEndWithoutControllers();
}

TEST_F(System, with_ill_formed_settings_creates_nothing) {
    configuration.Replace("</ROOT_ANALYZER>", "");
    Start();
    ExpectEndWithoutControllers();
}

TEST_F(System, without_the_root_element_creates_nothing) {
    configuration.Replace("<ROOT_ANALYZER>", "<ROOT_OTHER>").Replace("</ROOT_ANALYZER>", "</ROOT_OTHER>");
    Start();
    ExpectEndWithoutControllers();
}

TEST_F(System, without_its_own_section_creates_nothing) {
    configuration.RemoveSection("SYSTEM_CONTROL_INFO");
    Start();
    ExpectEndWithoutControllers();
}

TEST_F(System, runs_without_an_unread_section) {
    configuration.RemoveSection("WEB_INTERFACE_INFO");
    Start();
    WaitForIdle();
}
