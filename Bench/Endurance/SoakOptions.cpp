#include "Bench/Endurance/SoakOptions.h"

#include <algorithm>
#include <iterator>

#include "Bench/Peers/Script.h"

namespace Bench {

namespace {

// Each takes the value of its option; false where it is not one.
bool TakeCycles(SoakOptions& options, const std::string& value) { return ReadCount(value, 1000000, options.cycles); }

bool TakeResets(SoakOptions& options, const std::string& value) { return ReadCount(value, 1000000, options.resets); }

bool TakeDays(SoakOptions& options, const std::string& value) { return ReadDecimal(value, 1000.0, options.days); }

bool TakeFlood(SoakOptions& options, const std::string& value) { return ReadDecimal(value, 1e6, options.flood); }

bool TakeRate(SoakOptions& options, const std::string& value) {
    return ReadDecimal(value, 1e5, options.rate) && options.rate > 0.0;
}

bool TakeSeed(SoakOptions& options, const std::string& value) {
    std::uint64_t seed = 0;
    const bool fits = ReadCount(value, 0xFFFFFFFF, seed);
    options.seed = static_cast<std::uint32_t>(seed);
    return fits;
}

bool TakeSpeed(SoakOptions& options, const std::string& value) {
    return ReadDecimal(value, 1000.0, options.speed) && options.speed >= 0.1;
}

bool TakeBench(SoakOptions& options, const std::string& value) {
    options.bench = value;
    return !value.empty();
}

bool TakeProgram(SoakOptions& options, const std::string& value) {
    options.program = value;
    return !value.empty();
}

constexpr struct {
    const char* name;
    bool (*take)(SoakOptions& options, const std::string& value);
    const char* wants;
} Rows[] = {
    {"--cycles", TakeCycles, "a whole number from 0 to 1000000"},
    {"--resets", TakeResets, "a whole number from 0 to 1000000"},
    {"--days", TakeDays, "simulated days, from 0 to 1000"},
    {"--flood", TakeFlood, "seconds, from 0 to 1000000"},
    {"--rate", TakeRate, "pieces a second, up to 100000"},
    {"--seed", TakeSeed, "a whole number from 0 to 4294967295"},
    {"--speed", TakeSpeed, "a number from 0.1 to 1000"},
    {"--bench", TakeBench, "a folder"},
    {"--program", TakeProgram, "a file"},
};

}  // namespace

bool ReadSoakOptions(const std::vector<std::string>& arguments, SoakOptions& options, std::string& error) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        if (name == "--help") {
            options.help = true;
            continue;
        }
        const auto* row = std::find_if(std::begin(Rows), std::end(Rows),
                                       [&name](const auto& candidate) { return name == candidate.name; });
        if (row == std::end(Rows)) {
            error = "unknown argument \"" + name + "\"; --help lists what there is";
            return false;
        }
        const std::string value = i + 1 < arguments.size() ? arguments[++i] : "";
        if (!row->take(options, value)) {
            error = name;
            error.append(" does not take \"").append(value).append("\", but ").append(row->wants);
            return false;
        }
    }
    return true;
}

std::string SoakHelpText() {
    return
        R"(./soak lets the analyzer run for long on the virtual board, with a front end and a test station at its links.

  --cycles N        until N results that the front end was told are in the day files
  --resets N        until N resets
  --days X          until so many simulated days have passed
  --flood SECONDS   in place of commands and faults, random bytes on both links for so many seconds of real time
  --rate N          pieces a second on each link (50)
  --seed N          of all that is random: which button, command, fault or byte comes at which second (1)
  --speed X         simulated seconds for one real second, 0.1 to 1000 (20 for a flood, else 200)
  --bench DIR       where the run's files lie (build/soak)
  --program FILE    another program in the analyzer's place
  --help            this text

It ends with one line of figures. Exit status: 0 if all went well, 1 if not, 2 for a wrong argument.
)";
}

}  // namespace Bench
