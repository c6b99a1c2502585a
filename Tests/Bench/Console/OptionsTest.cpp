#include "Bench/Console/Options.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

Options Read(const std::vector<std::string>& arguments) {
    Options options;
    std::string error;
    EXPECT_TRUE(ReadOptions(arguments, options, error)) << error;
    return options;
}

std::string Refusal(const std::vector<std::string>& arguments) {
    Options options;
    std::string error;
    EXPECT_FALSE(ReadOptions(arguments, options, error));
    return error;
}

TEST(Options, no_argument_gives_the_usual_run) {
    const Options options = Read({});
    EXPECT_FALSE(options.cycles.has_value());
    EXPECT_EQ(options.chlorine, 0.60);
    EXPECT_EQ(options.alertLevel, "");
    EXPECT_EQ(options.alarmLevel, "");
    EXPECT_EQ(options.speed, 20.0);
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

TEST(Options, peers_take_their_port_script_and_patience) {
    const Options frontEnd = Read({"--frontend", "--frontend-port", "4000", "--script", "a.txt", "--wait", "2.5"});
    EXPECT_TRUE(frontEnd.frontEnd);
    EXPECT_EQ(frontEnd.frontEndPort, 4000);
    EXPECT_EQ(frontEnd.script, "a.txt");
    EXPECT_EQ(frontEnd.wait, 2.5);
    const Options testServer = Read({"--test-server", "--test-server-port=65535"});
    EXPECT_TRUE(testServer.testServer);
    EXPECT_EQ(testServer.testServerPort, 65535);
}

TEST(Options, ports_out_of_range_are_refused) {
    for (const char* option : {"--frontend-port", "--test-server-port"}) {
        for (const char* value : {"0", "65536", "-1", "x", ""}) {
            EXPECT_EQ(Refusal({option, value}),
                      std::string(option) + " does not take \"" + value + "\", but a port from 1 to 65535");
        }
    }
}

TEST(Options, wait_out_of_range_is_refused) {
    for (const char* value : {"-1", "1000001", "soon"}) {
        EXPECT_EQ(Refusal({"--wait", value}),
                  std::string("--wait does not take \"") + value + "\", but seconds, from 0 to 1000000");
    }
}

TEST(Options, two_peers_at_once_are_refused) {
    EXPECT_EQ(Refusal({"--frontend", "--test-server"}), "--frontend and --test-server are two programs");
}

TEST(Options, script_without_a_peer_is_refused) {
    EXPECT_EQ(Refusal({"--script", "a.txt"}), "--script goes with --frontend or --test-server");
    EXPECT_EQ(Refusal({"--frontend", "--script", ""}), "--script does not take \"\", but a file");
}

TEST(Options, each_value_is_taken) {
    const Options options =
        Read({"--cycles", "3", "--chlorine", "0.95", "--speed", "40", "--start", "2026-12-31 23:57:00", "--seed", "7",
              "--config", "a.xml", "--bench", "there", "--program", "p", "--log"});
    EXPECT_EQ(options.cycles, 3U);
    EXPECT_EQ(options.chlorine, 0.95);
    EXPECT_EQ(options.speed, 40.0);
    EXPECT_EQ(options.start, 1798761420);
    EXPECT_EQ(options.seed, 7U);
    EXPECT_EQ(options.config, "a.xml");
    EXPECT_EQ(options.bench, "there");
    EXPECT_EQ(options.program, "p");
    EXPECT_TRUE(options.log);
}

TEST(Options, value_may_stand_behind_an_equals_sign) { EXPECT_EQ(Read({"--cycles=12"}).cycles, 12U); }

TEST(Options, faults_are_kept_in_their_order_and_whole) {
    const Options options = Read({"--fault", "card-out@300", "--fault=rail-out=9", "--fault", "bubbles"});
    EXPECT_EQ(options.faults, (std::vector<std::string>{"card-out@300", "rail-out=9", "bubbles"}));
}

TEST(Options, fault_list_is_no_fault) {
    const Options options = Read({"--fault", "list"});
    EXPECT_TRUE(options.listFaults);
    EXPECT_TRUE(options.faults.empty());
}

TEST(Options, unknown_argument_is_named) {
    EXPECT_EQ(Refusal({"--cyles", "3"}), "unknown argument \"--cyles\"; --help lists what there is");
    EXPECT_EQ(Refusal({"3"}), "unknown argument \"3\"; --help lists what there is");
    EXPECT_EQ(Refusal({""}), "unknown argument \"\"; --help lists what there is");
    EXPECT_EQ(Refusal({"--log=yes"}), "unknown argument \"--log=yes\"; --help lists what there is");
}

TEST(Options, missing_value_is_named_with_what_is_wanted) {
    EXPECT_EQ(Refusal({"--cycles"}), "--cycles needs a value: a whole number from 1 to 1000000");
    EXPECT_EQ(Refusal({"--bench"}), "--bench needs a value: a folder");
}

TEST(Options, cycles_out_of_range_are_refused) {
    for (const char* value : {"0", "-1", "1.5", "three", "", "1000001", "99999999999999999999", "3x", " 3"}) {
        EXPECT_EQ(Refusal({"--cycles", value}),
                  std::string("--cycles does not take \"") + value + "\", but a whole number from 1 to 1000000");
    }
}

TEST(Options, chlorine_out_of_range_is_refused) {
    for (const char* value : {"-0.1", "20.1", "nan", "inf", "0,6", "", "1e1", "0x1", "1.2.3"}) {
        EXPECT_EQ(Refusal({"--chlorine", value}),
                  std::string("--chlorine does not take \"") + value + "\", but mg/l, from 0 to 20");
    }
    EXPECT_EQ(Read({"--chlorine", "0"}).chlorine, 0.0);
    EXPECT_EQ(Read({"--chlorine", "20"}).chlorine, 20.0);
}

TEST(Options, levels_are_taken_as_they_come) {
    const Options options = Read({"--alert", "0.50", "--alarm=20"});
    EXPECT_EQ(options.alertLevel, "0.50");
    EXPECT_EQ(options.alarmLevel, "20");
}

TEST(Options, levels_out_of_range_are_refused) {
    for (const std::string option : {"--alert", "--alarm"}) {
        for (const std::string value : {"-0.1", "20.1", "nan", "0,6", "", "1e1", "1.2.3", "\"/>"}) {
            EXPECT_EQ(Refusal({option, value}), option + " does not take \"" + value + "\", but mg/l, from 0 to 20");
        }
    }
}

TEST(Options, speed_out_of_range_is_refused) {
    for (const char* value : {"0", "0.05", "1001", "fast"}) {
        EXPECT_EQ(Refusal({"--speed", value}),
                  std::string("--speed does not take \"") + value + "\", but a number from 0.1 to 1000");
    }
}

TEST(Options, seed_out_of_range_is_refused) {
    for (const char* value : {"-1", "4294967296", "x"}) {
        EXPECT_EQ(Refusal({"--seed", value}),
                  std::string("--seed does not take \"") + value + "\", but a whole number from 0 to 4294967295");
    }
    EXPECT_EQ(Read({"--seed", "4294967295"}).seed, 4294967295U);
}

TEST(Options, noise_is_on_or_off) {
    EXPECT_TRUE(Read({}).noise);
    EXPECT_FALSE(Read({"--noise", "off"}).noise);
    EXPECT_TRUE(Read({"--noise", "off", "--noise", "on"}).noise);
    EXPECT_EQ(Refusal({"--noise", "none"}), "--noise does not take \"none\", but on or off");
}

TEST(Options, start_must_be_a_date_of_the_calendar) {
    for (const char* value : {"2026-12-31", "2026-02-29 00:00:00", "2026-13-01 00:00:00", "2026-12-31 24:00:00",
                              "2026-12-31T23:57:00", "2026-12-31 23:57:0", "2026-12-31 23:57:60", "1969-12-31 23:59:59",
                              "2038-01-01 00:00:00", "yesterday", "-026-12-31 23:57:00", "2026-00-10 00:00:00"}) {
        EXPECT_FALSE(ReadDate(value).has_value()) << value;
        EXPECT_EQ(Refusal({"--start", value}), std::string("--start does not take \"") + value +
                                                   "\", but a date as in \"2026-12-31 23:57:00\", from 1970 to 2037");
    }
    EXPECT_EQ(ReadDate("1970-01-01 00:00:00"), 0);
    EXPECT_EQ(ReadDate("2028-02-29 12:00:00"), 1835438400);
}

TEST(Options, empty_fault_is_refused) {
    for (const char* value : {"", "=3", "@12"}) {
        EXPECT_EQ(Refusal({"--fault", value}),
                  std::string("--fault does not take \"") + value + "\", but NAME[=VALUE][@SECONDS], or list");
    }
}

TEST(Options, help_names_every_option) {
    const std::string help = HelpText();
    for (const char* option : {"--cycles N",
                               "--chlorine MG_PER_L",
                               "--alert MG_PER_L",
                               "--alarm MG_PER_L",
                               "--speed X",
                               "--start \"DATE TIME\"",
                               "--seed N",
                               "--noise off",
                               "--config FILE",
                               "--bench DIR",
                               "--fault NAME[=VALUE][@SECONDS]",
                               "--fault list",
                               "--log",
                               "--program FILE",
                               "--frontend",
                               "--test-server",
                               "--frontend-port N",
                               "--test-server-port N",
                               "--script FILE",
                               "--wait SECONDS",
                               "--help"}) {
        EXPECT_NE(help.find(std::string("  ") + option), std::string::npos) << option;
    }
}

}  // namespace
}  // namespace Bench
