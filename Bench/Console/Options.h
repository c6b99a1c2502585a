// What a person asked of the bench on the command line. Reading it touches no file and starts nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

struct Options {
    std::optional<std::uint64_t> cycles;  // stop after that many results
    double chlorine = 0.60;               // mg/l
    std::string alertLevel;               // mg/l, as it came; empty: the configuration's
    std::string alarmLevel;
    double speed = 20.0;                // simulated seconds for one real second
    std::optional<std::int64_t> start;  // Unix time; the machine's own when absent
    std::uint32_t seed = 1;
    bool noise = true;
    std::string config;               // empty: the sample configuration
    std::string bench;                // empty: build/bench of the project
    std::string program;              // empty: the analyzer of the same build
    std::vector<std::string> faults;  // NAME[=VALUE][@SECONDS], as they came
    bool listFaults = false;
    bool log = false;
    bool help = false;
    // The other ends of the links.
    bool frontEnd = false;
    bool testServer = false;
    std::optional<std::uint16_t> frontEndPort;    // 3111 when absent
    std::optional<std::uint16_t> testServerPort;  // the configuration's when absent
    std::string script;                           // empty: the standard input
    double wait = 30.0;                           // seconds for a connection and for an answer
};

// False with a sentence in `error` at the first argument that is wrong.
bool ReadOptions(const std::vector<std::string>& arguments, Options& options, std::string& error);

// "YYYY-MM-DD HH:MM:SS", UTC, 1970 to 2037; nothing for any other text or a date that the calendar does not have.
std::optional<std::int64_t> ReadDate(const std::string& text);

// What --help prints.
std::string HelpText();

}  // namespace Bench
