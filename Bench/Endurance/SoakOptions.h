// What a person asked of the soak on the command line. Reading it touches no file and starts nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Bench {

struct SoakOptions {
    std::uint64_t cycles = 0;
    std::uint64_t resets = 0;
    double days = 0.0;
    double flood = 0.0;  // seconds of real time; 0: no flood
    double rate = 50.0;  // pieces a second, of a flood
    std::uint32_t seed = 1;
    double speed = 0.0;   // 0: 20 of a flood, 200 of the rest
    std::string bench;    // empty: build/soak of the project
    std::string program;  // empty: the analyzer of the same build
    bool help = false;
};

// False with a sentence in `error` at the first argument that is wrong.
bool ReadSoakOptions(const std::vector<std::string>& arguments, SoakOptions& options, std::string& error);

std::string SoakHelpText();

}  // namespace Bench
