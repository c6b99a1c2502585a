// What ./measure was asked for. Reading it touches no file and starts nothing.
#pragma once

#include <string>
#include <vector>

namespace Bench {

struct MeasureOptions {
    int cycles = 3;
    int resets = 7;
    int records = 25;
    int starts = 5;
    std::string arm;    // the stripped program; empty: not looked at
    std::string bench;  // where the files of the runs lie
    bool help = false;
};

// False with a sentence in `error` at the first argument that is wrong.
bool ReadMeasureOptions(const std::vector<std::string>& arguments, MeasureOptions& options, std::string& error);

std::string MeasureHelp();

}  // namespace Bench
