// ./run from outside: its output, its exit status and the files that it leaves.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "Bench/Board/Board.h"
#include "Tests/Support/BenchRun.h"
#include "Tests/Support/RawPeer.h"

namespace Bench {
namespace {

constexpr const char* Configuration =
    "<INFO_ITEM name=\"ColorimeterCellConstant\" value=\"2.4\"/>"
    "<INFO_ITEM name=\"LogMeasurementDataFileName\" value=\"Measurement.csv\"/>";

class RunProgram : public testing::Test {
protected:
    RunProgram() { WriteFile(m_folder / "c.xml", Configuration); }

    // On the fake analyzer, in a bench folder of the test.
    void StartFake(const std::string& fake, const std::vector<std::string>& more = {}) { StartFake(m_run, fake, more); }

    void StartFake(BenchRun& run, const std::string& fake, const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments = {
            "--program", BINARY_FOLDER "/fake_analyzer", "--bench", Bench(), "--config", m_folder / "c.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        setenv("FAKE_ANALYZER", fake.c_str(), 1);
        run.Start(arguments);
    }

    int Wait() { return m_run.Wait(); }
    int Run(const std::vector<std::string>& arguments) { return m_run.Run(arguments); }

    void ExpectRefused(const std::vector<std::string>& arguments, const std::string& sentence) {
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_EQ(Out(), "");
        EXPECT_EQ(Err(), "run: " + sentence + "\n");
    }

    std::string Out() const { return m_run.Out(); }
    std::string Err() const { return m_run.Err(); }
    std::string Bench() const { return m_folder / "bench"; }

    // A guard against hanging, never a measure.
    template <typename Condition>
    static bool Eventually(Condition condition) {
        for (int tries = 0; tries < 6000; ++tries) {
            if (condition()) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    std::vector<pid_t> FakePids() const {
        std::vector<pid_t> pids;
        std::ifstream file(Bench() + "/pids");
        for (pid_t pid = 0; file >> pid;) {
            pids.push_back(pid);
        }
        return pids;
    }

    void ExpectNothingLeftAfter(int signal, int status) {
        StartFake("children");
        ASSERT_TRUE(Eventually([this] { return !ReadFile(Bench() + "/ready").empty(); }));
        const std::vector<pid_t> pids = FakePids();
        ASSERT_EQ(pids.size(), 3U);
        m_run.Signal(signal);
        EXPECT_EQ(Wait(), status);
        for (const pid_t pid : pids) {
            EXPECT_TRUE(Eventually([pid] { return kill(pid, 0) != 0 && errno == ESRCH; }));
        }
    }

    TemporaryFolder m_folder;
    BenchRun m_run;
};

TEST_F(RunProgram, wrong_option_ends_with_a_sentence) {
    ExpectRefused({"--cyles", "3"}, "unknown argument \"--cyles\" (see --help)");
}

TEST_F(RunProgram, wrong_value_ends_with_a_sentence) {
    ExpectRefused({"--cycles", "0"}, "--cycles: invalid value \"0\" (expected a whole number from 1 to 1000000)");
}

TEST_F(RunProgram, exact_time_with_a_speed_is_refused_before_the_folder_is_touched) {
    ExpectRefused({"--exact", "--speed", "5", "--bench", Bench()}, "--exact: not together with --speed");
    EXPECT_FALSE(std::filesystem::exists(Bench()));
}

TEST_F(RunProgram, unknown_fault_is_refused) {
    ExpectRefused({"--fault", "moonlight@3"}, "--fault moonlight@3: unknown fault \"moonlight\" (see --fault list)");
}

TEST_F(RunProgram, wrong_value_of_a_fault_is_refused_before_the_folder_is_touched) {
    std::string error;
    EXPECT_FALSE(Board::CheckFault("rail-out=ninety", error));
    ExpectRefused({"--fault", "rail-out=ninety", "--bench", Bench()},
                  "--fault rail-out=ninety: " + error + " (see --fault list)");
    EXPECT_FALSE(std::filesystem::exists(Bench()));
}

TEST_F(RunProgram, missing_program_is_refused) {
    ExpectRefused({"--program", "/nowhere/p"}, "--program: invalid value \"/nowhere/p\" (expected an executable file)");
}

TEST_F(RunProgram, missing_configuration_is_refused) {
    ExpectRefused({"--config", "/nowhere/c.xml", "--bench", Bench()}, "can't read the configuration /nowhere/c.xml");
    EXPECT_FALSE(std::filesystem::exists(Bench()));
}

TEST_F(RunProgram, foreign_folder_is_refused_and_left_unchanged) {
    std::filesystem::create_directory(Bench());
    WriteFile(Bench() + "/letter", "dear");
    ExpectRefused({"--bench", Bench(), "--config", m_folder / "c.xml"},
                  Bench() + " is neither empty nor a bench folder; left unchanged");
    EXPECT_EQ(ReadFile(Bench() + "/letter"), "dear");
}

TEST_F(RunProgram, level_without_an_item_is_refused) {
    ExpectRefused({"--alert", "0.5", "--bench", Bench(), "--config", m_folder / "c.xml"},
                  "--alert: the configuration gives no AlertLevel");
    ExpectRefused({"--alarm", "0.5", "--bench", Bench(), "--config", m_folder / "c.xml"},
                  "--alarm: the configuration gives no AlarmLevel");
    EXPECT_FALSE(std::filesystem::exists(Bench()));
}

TEST_F(RunProgram, levels_change_the_items_of_its_own_configuration) {
    const std::string comment = "<!-- former levels: <INFO_ITEM name=\"AlarmLevel\" value=\"0.9\"/> -->";
    const std::string levels =
        comment + "<INFO_ITEM name=\"AlarmLevel\" value='0.8'/><INFO_ITEM name='AlertLevel' value=\"0.5\"/>";
    WriteFile(m_folder / "c.xml", Configuration + levels);
    StartFake("cycle", {"--cycles", "1", "--alert", "0.25", "--alarm", "1.125"});
    EXPECT_EQ(Wait(), 0) << Err();
    EXPECT_EQ(ReadFile(Bench() + "/usr/share/vorn/bin/configuration/analyzer.conf.xml"),
              Configuration + comment +
                  "<INFO_ITEM name=\"AlarmLevel\" value='1.125'/><INFO_ITEM name='AlertLevel' value=\"0.25\"/>");
    EXPECT_EQ(ReadFile(m_folder / "c.xml"), Configuration + levels);
}

TEST_F(RunProgram, indicator_is_shown_when_it_changes) {
    StartFake("indicate");
    EXPECT_TRUE(Eventually([this] {
        return Out().find("\nindicator analyzer blue water amber sound alert.wav\n") != std::string::npos;
    })) << Out();
    m_run.Signal(SIGTERM);
    EXPECT_EQ(Wait(), 143);
}

TEST_F(RunProgram, analyzer_connects_to_peers_at_other_ports) {
    const RawListener frontEnd;
    const RawListener station;
    WriteFile(m_folder / "c.xml",
              Configuration + std::string("<INFO_ITEM name=\"TestServerPortNumber\" value=\"1234\"/>"));
    StartFake("connect", {"--frontend-port", std::to_string(frontEnd.Port()), "--test-server-port",
                          std::to_string(station.Port())});
    const std::string first = "port 3111";
    const std::string second = "port 1234";
    EXPECT_EQ(frontEnd.Accept().Receive(first.size()), Bytes(first.begin(), first.end()));
    EXPECT_EQ(station.Accept().Receive(second.size()), Bytes(second.begin(), second.end()));
    m_run.Signal(SIGTERM);
    EXPECT_EQ(Wait(), 143);
}

TEST_F(RunProgram, help_is_printed) {
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_EQ(Out().rfind("Runs the analyzer on a virtual board", 0), 0U);
    EXPECT_EQ(Err(), "");
}

TEST_F(RunProgram, fault_list_shows_every_fault_on_its_line) {
    EXPECT_EQ(Run({"--fault", "list"}), 0);
    for (const FaultInfo& fault : Board::KnownFaults()) {
        const std::string form = fault.value.empty() ? fault.name : fault.name + "=" + fault.value;
        EXPECT_NE(("\n" + Out()).find("\n" + form + " "), std::string::npos) << form;
        EXPECT_NE(Out().find(" " + fault.description + "\n"), std::string::npos) << form;
    }
}

TEST_F(RunProgram, cycle_is_shown_as_plain_lines_without_a_terminal) {
    StartFake("cycle", {"--cycles", "1", "--chlorine", "0.35"});
    EXPECT_EQ(Wait(), 0);
    std::string out = Out();
    const std::size_t last = out.rfind("1 result in ");
    ASSERT_NE(last, std::string::npos) << out;
    EXPECT_EQ(out.substr(0, last),
              "The analyzer on the bench: 0.35 mg/l chlorine in the water, cell constant 2.4, 20 times as fast as the "
              "clock\n"
              "---- 2026-12-31 ----\n"
              "23:57:05  Executing Mixing Step\n"
              "23:57:05  Waiting for Next Measurement Initiation\n"
              "23:57:05  End of Measurement Cycle: LED DutyCycle = 28.571429%% and LED Adjust Time = 2500ms\n"
              "result 1 chlorine 0.5997 sample 0.3500 absorbance 0.24988 dark 1500 reference 2001234 reacted 1126544 "
              "duty 28.57\n");
    EXPECT_EQ(Err(), "");
}

TEST_F(RunProgram, log_is_shown_on_demand) {
    StartFake("cycle", {"--cycles", "1", "--log"});
    EXPECT_EQ(Wait(), 0);
    EXPECT_NE(Out().find("\n    log  UTC 2026-12-31 23:57:05.000000001 :: SystemControl is not a status\n"),
              std::string::npos);
}

TEST_F(RunProgram, cells_calibration_follows_the_configuration) {
    StartFake("cycle", {"--cycles", "1", "--chlorine", "0.35"});
    EXPECT_EQ(Wait(), 0);
    std::string error;
    const std::unique_ptr<Board> board = Board::Open(Bench(), error);
    ASSERT_NE(board, nullptr) << error;
    EXPECT_EQ(board->Settings().cellConstant, 2.4);
    EXPECT_EQ(board->Settings().chlorine, 0.35);
}

TEST_F(RunProgram, folder_stays_after_the_run_and_is_reset_by_the_next) {
    StartFake("cycle", {"--cycles", "1"});
    EXPECT_EQ(Wait(), 0);
    EXPECT_TRUE(std::filesystem::exists(Bench() + "/card/2026-12-31_Measurement.csv"));
    WriteFile(Bench() + "/card/old", "old");
    StartFake("end");
    EXPECT_EQ(Wait(), 1);
    EXPECT_FALSE(std::filesystem::exists(Bench() + "/card/old"));
}

TEST_F(RunProgram, configuration_may_come_from_the_folder_that_is_reset) {
    StartFake("end");
    EXPECT_EQ(Wait(), 1);
    const std::string configuration = Bench() + "/usr/share/vorn/bin/configuration/analyzer.conf.xml";
    StartFake("end", {"--config", configuration});
    EXPECT_EQ(Wait(), 1);
    EXPECT_EQ(ReadFile(configuration), Configuration);
}

TEST_F(RunProgram, end_of_the_analyzer_is_reported_with_its_status) {
    StartFake("end", {"--cycles", "1"});
    EXPECT_EQ(Wait(), 1);
    EXPECT_EQ(Err(), "run: the analyzer ended with status 3; its output is in " + Bench() + "/output\n");
    EXPECT_EQ(ReadFile(Bench() + "/output"), "the fake ends\n");
}

TEST_F(RunProgram, crash_of_the_analyzer_is_reported_with_its_signal) {
    StartFake("fault");
    EXPECT_EQ(Wait(), 1);
    EXPECT_EQ(Err(), "run: the analyzer was ended by a signal: Aborted; its output is in " + Bench() + "/output\n");
}

TEST_F(RunProgram, run_without_a_result_ends) {
    StartFake("nothing", {"--cycles", "1", "--speed", "1000"});
    EXPECT_EQ(Wait(), 1);
    EXPECT_EQ(Err(), "run: no result in 9 min 0 s of simulated time\n");
}

TEST_F(RunProgram, fault_is_active_in_the_run) {
    StartFake("cycle", {"--cycles", "1", "--fault", "led-dead"});
    EXPECT_EQ(Wait(), 0);
    EXPECT_NE(Out().find("  fault led-dead\n"), std::string::npos);
    std::string error;
    const std::unique_ptr<Board> board = Board::Open(Bench(), error);
    ASSERT_NE(board, nullptr) << error;
    EXPECT_TRUE(board->Settings().ledDead);
}

TEST_F(RunProgram, clock_of_the_run_starts_as_asked) {
    StartFake("cycle", {"--cycles", "1", "--start", "2026-12-31 23:57:00"});
    EXPECT_EQ(Wait(), 0);
    std::string error;
    const std::unique_ptr<Board> board = Board::Open(Bench(), error);
    ASSERT_NE(board, nullptr) << error;
    const double sinceStart = static_cast<double>(board->WallNanoSeconds()) / 1e9 - 1798761420.0;
    EXPECT_NEAR(sinceStart, board->Seconds(), 20.0);
}

TEST_F(RunProgram, interrupt_leaves_no_process_behind) { ExpectNothingLeftAfter(SIGINT, 130); }

TEST_F(RunProgram, termination_leaves_no_process_behind) { ExpectNothingLeftAfter(SIGTERM, 143); }

TEST_F(RunProgram, killed_runner_leaves_no_process_behind) { ExpectNothingLeftAfter(SIGKILL, -SIGKILL); }

TEST_F(RunProgram, second_run_in_the_same_folder_is_refused) {
    StartFake("children");
    ASSERT_TRUE(Eventually([this] { return !ReadFile(Bench() + "/ready").empty(); }));
    BenchRun second;
    StartFake(second, "end");
    EXPECT_EQ(second.Wait(), 2);
    EXPECT_EQ(second.Err(), "run: another run uses the folder " + Bench() + "\n");
    m_run.Signal(SIGTERM);
    EXPECT_EQ(Wait(), 143);
}

}  // namespace
}  // namespace Bench
