// The options of ./run. Reading them changes no file and starts nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Bench/Common/CommandLine.h"

namespace Bench {

struct Options {
    std::optional<std::uint64_t> cycles;  // stop after that many results
    double chlorine = 0.60;               // mg/l
    std::string alertLevel;               // mg/l, as written; empty: the configuration's
    std::string alarmLevel;
    std::optional<double> speed;        // simulated seconds for one real second; 20 if absent
    bool exact = false;                 // in exact time, as fast as that goes
    std::optional<std::int64_t> start;  // Unix time; the machine's own if absent, 2026-01-01 in exact time
    std::uint32_t seed = 1;             // of the noise, and in exact time of the order of threads
    bool noise = true;
    std::string config;               // empty: the sample configuration
    std::string bench;                // empty: build/bench of the project
    std::string program;              // empty: the analyzer of the same build
    std::vector<std::string> faults;  // NAME[=VALUE][@SECONDS], as written
    bool listFaults = false;
    bool log = false;
    // The other ends of the links.
    bool frontEnd = false;
    bool testServer = false;
    std::optional<std::uint16_t> frontEndPort;    // 3111 if absent
    std::optional<std::uint16_t> testServerPort;  // the configuration's if absent
    std::string script;                           // empty: the standard input
    double wait = 30.0;                           // seconds for a connection and for an answer
};

// Reads into `options`, which has to live as long.
CommandLine RunCommandLine(Options& options);

// "YYYY-MM-DD HH:MM:SS", UTC, 1970 to 2037; nothing for any other text or a date that the calendar does not have.
std::optional<std::int64_t> ReadDate(const std::string& text);

}  // namespace Bench
