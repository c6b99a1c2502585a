#include "Bench/Console/Options.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

Options Read(const std::vector<std::string>& arguments) {
    Options options;
    EXPECT_EQ(RunCommandLine(options).Read(arguments), "");
    return options;
}

std::string Refusal(const std::vector<std::string>& arguments) {
    Options options;
    return RunCommandLine(options).Read(arguments);
}

TEST(Options, defaults) {
    const Options options = Read({});
    EXPECT_FALSE(options.cycles.has_value());
    EXPECT_EQ(options.chlorine, 0.60);
    EXPECT_EQ(options.alertLevel, "");
    EXPECT_EQ(options.alarmLevel, "");
    EXPECT_EQ(options.speed, std::nullopt);
    EXPECT_FALSE(options.exact);
    EXPECT_FALSE(options.start.has_value());
    EXPECT_EQ(options.seed, 1U);
    EXPECT_TRUE(options.bench.empty());
    EXPECT_TRUE(options.config.empty());
    EXPECT_TRUE(options.faults.empty());
    EXPECT_FALSE(options.log);
    EXPECT_FALSE(options.frontEnd);
    EXPECT_FALSE(options.testServer);
    EXPECT_FALSE(options.frontEndPort.has_value());
    EXPECT_FALSE(options.testServerPort.has_value());
    EXPECT_EQ(options.wait, 30.0);
}

TEST(Options, peers_have_port_script_and_timeout) {
    const Options frontEnd = Read({"--frontend", "--frontend-port", "4000", "--script", "a.txt", "--wait", "2.5"});
    EXPECT_TRUE(frontEnd.frontEnd);
    EXPECT_EQ(frontEnd.frontEndPort, 4000);
    EXPECT_EQ(frontEnd.script, "a.txt");
    EXPECT_EQ(frontEnd.wait, 2.5);
    const Options testServer = Read({"--test-server", "--test-server-port=65535"});
    EXPECT_TRUE(testServer.testServer);
    EXPECT_EQ(testServer.testServerPort, 65535);
}

TEST(Options, each_value_is_taken) {
    const Options options =
        Read({"--cycles", "3", "--chlorine", "0.95", "--speed", "40", "--start", "2026-12-31 23:57:00", "--seed", "7",
              "--config", "a.xml", "--bench", "there", "--program", "/bin/sh", "--log"});
    EXPECT_EQ(options.cycles, 3U);
    EXPECT_EQ(options.chlorine, 0.95);
    EXPECT_EQ(options.speed, 40.0);
    EXPECT_EQ(options.start, 1798761420);
    EXPECT_EQ(options.seed, 7U);
    EXPECT_EQ(options.config, "a.xml");
    EXPECT_EQ(options.bench, "there");
    EXPECT_EQ(options.program, "/bin/sh");
    EXPECT_TRUE(options.log);
}

TEST(Options, faults_are_kept_whole_and_in_order) {
    const Options options = Read({"--fault", "card-out@300", "--fault=rail-out=9", "--fault", "bubbles"});
    EXPECT_EQ(options.faults, (std::vector<std::string>{"card-out@300", "rail-out=9", "bubbles"}));
}

TEST(Options, fault_list_is_no_fault) {
    const Options options = Read({"--fault", "list"});
    EXPECT_TRUE(options.listFaults);
    EXPECT_TRUE(options.faults.empty());
}

TEST(Options, two_peers_at_once_are_refused) {
    EXPECT_EQ(Refusal({"--frontend", "--test-server"}), "--frontend: not together with --test-server");
}

TEST(Options, script_without_a_peer_is_refused) {
    EXPECT_EQ(Refusal({"--script", "a.txt"}), "--script: only with --frontend or --test-server");
}

TEST(Options, exact_time_has_no_speed_and_no_peers) {
    EXPECT_TRUE(Read({"--exact", "--seed", "9"}).exact);
    EXPECT_EQ(Refusal({"--exact", "--speed", "20"}), "--exact: not together with --speed");
    for (const std::vector<std::string>& peer : std::vector<std::vector<std::string>>{
             {"--frontend"}, {"--test-server"}, {"--frontend-port", "3111"}, {"--test-server-port", "3112"}}) {
        std::vector<std::string> arguments = peer;
        arguments.emplace_back("--exact");
        EXPECT_EQ(Refusal(arguments), "--exact: not together with a front end or a test station, which need real time")
            << peer[0];
    }
}

TEST(Options, limits_are_included) {
    EXPECT_EQ(Read({"--cycles", "1"}).cycles, 1U);
    EXPECT_EQ(Read({"--cycles", "1000000"}).cycles, 1000000U);
    EXPECT_EQ(Read({"--chlorine", "0"}).chlorine, 0.0);
    EXPECT_EQ(Read({"--chlorine", "20"}).chlorine, 20.0);
    EXPECT_EQ(Read({"--speed", "0.1"}).speed, 0.1);
    EXPECT_EQ(Read({"--speed", "1000"}).speed, 1000.0);
    EXPECT_EQ(Read({"--seed", "0"}).seed, 0U);
    EXPECT_EQ(Read({"--seed", "4294967295"}).seed, 4294967295U);
    EXPECT_EQ(Read({"--frontend-port", "1"}).frontEndPort, 1);
    EXPECT_EQ(Read({"--test-server-port", "65535"}).testServerPort, 65535);
    EXPECT_EQ(Read({"--wait", "0"}).wait, 0.0);
    EXPECT_EQ(Read({"--wait", "1000000"}).wait, 1000000.0);
}

TEST(Options, values_out_of_range_are_refused) {
    const struct {
        const char* option;
        const char* value;
        const char* expected;
    } rows[] = {
        {"--cycles", "0", "a whole number from 1 to 1000000"},
        {"--cycles", "1000001", "a whole number from 1 to 1000000"},
        {"--chlorine", "20.1", "a number from 0 to 20"},
        {"--speed", "0.05", "a number from 0.1 to 1000"},
        {"--speed", "1001", "a number from 0.1 to 1000"},
        {"--seed", "4294967296", "a whole number from 0 to 4294967295"},
        {"--frontend-port", "0", "a whole number from 1 to 65535"},
        {"--test-server-port", "65536", "a whole number from 1 to 65535"},
        {"--wait", "1000001", "a number from 0 to 1000000"},
        {"--noise", "none", "on or off"},
        {"--fault", "", "NAME[=VALUE][@SECONDS], or list"},
        {"--fault", "=3", "NAME[=VALUE][@SECONDS], or list"},
        {"--fault", "@12", "NAME[=VALUE][@SECONDS], or list"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Refusal({row.option, row.value}),
                  std::string(row.option) + ": invalid value \"" + row.value + "\" (expected " + row.expected + ")");
    }
}

TEST(Options, levels_are_taken_as_written) {
    const Options options = Read({"--alert", "0.50", "--alarm=20"});
    EXPECT_EQ(options.alertLevel, "0.50");
    EXPECT_EQ(options.alarmLevel, "20");
}

TEST(Options, levels_out_of_range_are_refused) {
    for (const std::string option : {"--alert", "--alarm"}) {
        for (const std::string value : {"-0.1", "20.1", "nan", "0,6", "", "1e1", "1.2.3", "\"/>"}) {
            EXPECT_EQ(Refusal({option, value}),
                      option + ": invalid value \"" + value + "\" (expected a number from 0 to 20)");
        }
    }
}

TEST(Options, noise_is_on_or_off) {
    EXPECT_TRUE(Read({}).noise);
    EXPECT_FALSE(Read({"--noise", "off"}).noise);
    EXPECT_TRUE(Read({"--noise", "off", "--noise", "on"}).noise);
}

TEST(Options, start_is_a_date_of_the_calendar) {
    for (const char* value : {"2026-12-31", "2026-02-29 00:00:00", "2026-13-01 00:00:00", "2026-12-31 24:00:00",
                              "2026-12-31T23:57:00", "2026-12-31 23:57:0", "2026-12-31 23:57:60", "1969-12-31 23:59:59",
                              "2038-01-01 00:00:00", "yesterday", "-026-12-31 23:57:00", "2026-00-10 00:00:00",
                              "2026-12-31  23:57:00", " 2026-12-31 23:57:00", "2026-12-31 23:57:00 "}) {
        EXPECT_FALSE(ReadDate(value).has_value()) << value;
        EXPECT_EQ(Refusal({"--start", value}),
                  std::string("--start: invalid value \"") + value +
                      "\" (expected a date as in \"2026-12-31 23:57:00\", from 1970 to 2037)");
    }
    EXPECT_EQ(ReadDate("1970-01-01 00:00:00"), 0);
    EXPECT_EQ(ReadDate("2037-12-31 23:59:59"), 2145916799);
    EXPECT_EQ(ReadDate("2028-02-29 12:00:00"), 1835438400);
}

TEST(Options, unknown_fault_is_refused) {
    EXPECT_EQ(Refusal({"--fault", "bubbles", "--fault", "moonlight@3"}),
              "--fault moonlight@3: unknown fault \"moonlight\" (see --fault list)");
}

}  // namespace
}  // namespace Bench
