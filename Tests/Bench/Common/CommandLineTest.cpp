// The dialect that all programs of the bench share.
#include "Bench/Common/CommandLine.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

class Dialect : public testing::Test {
protected:
    Dialect() {
        line.AddNumber<std::uint16_t>("--port N", 1, 65535, port, "a port");
        line.AddNumber("--speed X", 0.5, 1000.0, speed, "how fast");
        line.AddText("--file FILE", "a file", file, "a path");
        line.AddFlag("--log", isLogged, "show more");
        const auto take = [this](const std::string& value) {
            list.push_back(value);
            return value != "bad";
        };
        line.Add("--fault NAME[=VALUE]", "NAME[=VALUE]", take, "first line\nsecond line");
        line.AddCheck([this] { return port == 99 ? "--port: not 99" : ""; });
    }

    CommandLine line{"test", "Purpose.", "Notes."};
    std::optional<std::uint16_t> port;
    double speed = 1.0;
    std::string file;
    bool isLogged = false;
    std::vector<std::string> list;
};

TEST_F(Dialect, value_follows_a_blank_or_an_equals_sign) {
    EXPECT_EQ(line.Read({"--port", "12", "--speed=2.5", "--log", "--file=a=b"}), "");
    EXPECT_EQ(port, 12);
    EXPECT_EQ(speed, 2.5);
    EXPECT_EQ(file, "a=b");
    EXPECT_TRUE(isLogged);
}

TEST_F(Dialect, last_value_counts) {
    EXPECT_EQ(line.Read({"--port", "12", "--port=13"}), "");
    EXPECT_EQ(port, 13);
}

TEST_F(Dialect, each_value_of_a_list_is_taken_in_order) {
    EXPECT_EQ(line.Read({"--fault", "a=1", "--log", "--fault=b@2"}), "");
    EXPECT_EQ(list, (std::vector<std::string>{"a=1", "b@2"}));
}

TEST_F(Dialect, value_may_look_like_an_option) {
    EXPECT_EQ(line.Read({"--file", "--log"}), "");
    EXPECT_EQ(file, "--log");
    EXPECT_FALSE(isLogged);
}

TEST_F(Dialect, invalid_whole_number_is_refused) {
    for (const char* value :
         {"0", "-1", "1.5", "three", "", "65536", "99999999999999999999", "3x", " 3", "+3", "0x3"}) {
        EXPECT_EQ(line.Read({"--port", value}),
                  std::string("--port: invalid value \"") + value + "\" (expected a whole number from 1 to 65535)");
        EXPECT_FALSE(port.has_value());
    }
}

TEST_F(Dialect, invalid_number_is_refused) {
    for (const char* value : {"0.49", "1000.1", "nan", "inf", "0,6", "", "1e1", "0x1", "1.2.3", "-1"}) {
        EXPECT_EQ(line.Read({std::string("--speed=") + value}),
                  std::string("--speed: invalid value \"") + value + "\" (expected a number from 0.5 to 1000)");
        EXPECT_EQ(speed, 1.0);
    }
}

TEST_F(Dialect, empty_text_is_refused) {
    EXPECT_EQ(line.Read({"--file="}), "--file: invalid value \"\" (expected a file)");
    EXPECT_EQ(line.Read({"--file=", "--log"}), "--file: invalid value \"\" (expected a file)");
}

TEST_F(Dialect, refusal_of_a_listed_value_is_an_error) {
    EXPECT_EQ(line.Read({"--fault", "bad", "--fault", "good"}),
              "--fault: invalid value \"bad\" (expected NAME[=VALUE])");
}

TEST_F(Dialect, missing_value_is_an_error) {
    EXPECT_EQ(line.Read({"--port"}), "--port: no value (expected a whole number from 1 to 65535)");
    EXPECT_EQ(line.Read({"--log", "--file"}), "--file: no value (expected a file)");
}

TEST_F(Dialect, flag_takes_no_value) { EXPECT_EQ(line.Read({"--log=yes"}), "--log: takes no value"); }

TEST_F(Dialect, unknown_argument_is_an_error) {
    EXPECT_EQ(line.Read({"--prot", "3"}), "unknown argument \"--prot\" (see --help)");
    EXPECT_EQ(line.Read({"3"}), "unknown argument \"3\" (see --help)");
    EXPECT_EQ(line.Read({""}), "unknown argument \"\" (see --help)");
    EXPECT_EQ(line.Read({"-x"}), "unknown argument \"-x\" (see --help)");
}

TEST_F(Dialect, condition_on_the_options_is_checked) { EXPECT_EQ(line.Read({"--port", "99"}), "--port: not 99"); }

TEST_F(Dialect, help_is_wanted_by_either_name) {
    for (const char* name : {"-h", "--help"}) {
        CommandLine other("test", "", "");
        EXPECT_EQ(other.Read({name}), "");
        EXPECT_TRUE(other.IsHelpWanted()) << name;
    }
    EXPECT_EQ(line.Read({"--log"}), "");
    EXPECT_FALSE(line.IsHelpWanted());
}

TEST_F(Dialect, help_lists_every_option) {
    EXPECT_EQ(line.Help(),
              "Purpose.\n\n"
              "Usage: ./test [OPTIONS]\n\n"
              "Options:\n"
              "  -h,--help                 print this help\n"
              "  --port N                  a port\n"
              "  --speed X                 how fast\n"
              "  --file FILE               a path\n"
              "  --log                     show more\n"
              "  --fault NAME[=VALUE]      first line\n"
              "                            second line\n"
              "\nNotes.\n");
}

}  // namespace
}  // namespace Bench
