#include "Bench/Measure/MeasureOptions.h"

#include <cstdlib>

namespace Bench {

namespace {

constexpr int Most = 10000;

struct CountOption {
    const char* name;
    int MeasureOptions::*member;
};
constexpr CountOption Counts[] = {
    {"--cycles", &MeasureOptions::cycles},
    {"--resets", &MeasureOptions::resets},
    {"--records", &MeasureOptions::records},
    {"--starts", &MeasureOptions::starts},
};

struct TextOption {
    const char* name;
    std::string MeasureOptions::*member;
};
constexpr TextOption Texts[] = {
    {"--arm", &MeasureOptions::arm},
    {"--bench", &MeasureOptions::bench},
};

bool ReadCount(const std::string& text, int& count) {
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    count = static_cast<int>(value);
    return !text.empty() && *end == '\0' && value >= 1 && value <= Most;
}

bool ReadOption(const std::string& name, const std::string& value, MeasureOptions& options, std::string& error) {
    for (const CountOption& row : Counts) {
        if (name == row.name) {
            error = name;
            error.append(" takes a number from 1 to 10000, not \"").append(value).append("\"");
            return ReadCount(value, options.*row.member);
        }
    }
    for (const TextOption& row : Texts) {
        if (name == row.name) {
            error = name + " takes a path";
            options.*row.member = value;
            return !value.empty();
        }
    }
    error = "unknown argument \"" + name + "\"; --help lists them";
    return false;
}

}  // namespace

bool ReadMeasureOptions(const std::vector<std::string>& arguments, MeasureOptions& options, std::string& error) {
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        if (arguments[i] == "--help") {
            options.help = true;
            return true;
        }
        const std::string value = i + 1 < arguments.size() ? arguments[i + 1] : "";
        if (!ReadOption(arguments[i], value, options, error)) {
            return false;
        }
    }
    return true;
}

std::string MeasureHelp() {
    return "Measures the analyzer's footprint and calm on the virtual board, in time with the clock.\n"
           "  --cycles N    whole cycles of two and a half minutes; 3 without it\n"
           "  --resets N    from RESET_SYSTEM to IDLE_STATE, twelve seconds each; 7 without it\n"
           "  --records N   short cycles, from the last reading to the flushed record; 25 without it\n"
           "  --starts N    looks at the memory, each of another start; 5 without it\n"
           "  --arm FILE    the stripped program for the instrument's processor\n"
           "  --bench DIR   where the files of the runs lie; build/measure without it\n"
           "Exit status: 0 where every figure is met, 1 where one is missed, 2 where something can't be measured.\n";
}

}  // namespace Bench
