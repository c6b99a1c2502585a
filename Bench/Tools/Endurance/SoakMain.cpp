#include <cstdio>

#include "Bench/Common/CommandLine.h"
#include "Bench/Common/Program.h"
#include "Bench/Tools/Endurance/Flood.h"
#include "Bench/Tools/Endurance/Soak.h"

namespace {

using namespace Bench;

struct SoakOptions {
    SoakGoals goals;
    FloodPlan flood{0.0, 1, 50.0};
    double speed = 20.0;  // of a flood; the rest runs in exact time
    std::string bench;    // empty: build/soak
    std::string program;  // empty: the analyzer of this build

    bool IsFlood() const { return flood.seconds > 0.0; }
    bool HasGoal() const { return goals.cycles > 0 || goals.resets > 0 || goals.days > 0.0; }
};

CommandLine SoakCommandLine(SoakOptions& options) {
    CommandLine line("soak", "Long runs of the analyzer on the virtual board, with a front end and a test\nstation.",
                     "It ends with one line of figures. Exit status: 0 if all was well, 1 if not, 2\n"
                     "for a wrong argument.");
    line.AddNumber<std::uint64_t>("--cycles N", 0, 1000000, options.goals.cycles,
                                  "until N results sent to the front end are in the\nday files");
    line.AddNumber<std::uint64_t>("--resets N", 0, 1000000, options.goals.resets, "until N resets");
    line.AddNumber("--days X", 0.0, 1000.0, options.goals.days, "until X simulated days have passed");
    line.AddNumber("--flood SECONDS", 0.0, 1000000.0, options.flood.seconds,
                   "instead of commands and faults, random bytes on\nboth links for so many real seconds");
    line.AddNumber("--rate N", 0.001, 100000.0, options.flood.rate,
                   "pieces per second on each link, 0.001 to 100000\n(50)");
    line.AddNumber<std::uint32_t>("--seed N", 0, 4294967295, options.flood.seed,
                                  "seed of all random buttons, commands, faults,\nbytes and moments (1)");
    line.AddNumber("--speed X", 0.1, 1000.0, options.speed,
                   "simulated seconds per real second of a flood, 0.1 to\n1000 (20); the rest is in exact time");
    line.AddText("--bench DIR", "a folder", options.bench, "folder of the run (build/soak)");
    line.AddProgram(options.program);
    line.AddCheck([&options] {
        return options.IsFlood() || options.HasGoal() ? ""
                                                      : "nothing to do: give --cycles, --resets, --days or --flood";
    });
    return line;
}

// After a reset the analyzer enters the test state, in which the test link works. The log needs only severe errors.
const SettingList Settings = {{"StartInTestMode", "true"}, {"LoggingLevel", "CRITICAL_LOG_LEVEL"}};

SoakPace PaceOf(const SoakGoals& goals) {
    if (goals.days > 0.0) {
        return {600.0, 43200.0, 1200.0};
    }
    return goals.cycles > 0 ? SoakPace{60.0, 7200.0, 400.0} : SoakPace{10.0, 40.0, 60.0};
}

int Run(const SoakOptions& options) {
    const volatile std::sig_atomic_t& signal = CatchSignals();
    Places places = PlacesOfBuild("soak");
    places.program = options.program.empty() ? places.program : options.program;
    places.bench = options.bench.empty() ? places.bench : options.bench;
    BoardSetup setup;
    setup.speed = options.speed;
    if (!options.IsFlood()) {
        setup.exact.emplace().seed = options.flood.seed;
    }
    setup.startSeconds = LongRunStart;
    setup.seed = options.flood.seed;
    SystemUnderTest system;
    std::string trouble;
    if (!system.Prepare(places, setup, Settings, trouble) || !system.Start(trouble)) {
        return Refuse("soak", trouble);
    }
    const auto run = [&](auto&& course) {
        const bool isWell = course.Run(signal, trouble);
        system.Stop();
        std::printf("%s: %s%s\n", course.Describe().c_str(), isWell ? "passed" : "FAILED, ",
                    isWell ? "" : trouble.c_str());
        return isWell ? ExitSuccess : ExitFailure;
    };
    if (options.IsFlood()) {
        return run(Flood(system, options.flood));
    }
    SoakPlan plan(options.flood.seed, PaceOf(options.goals));
    return run(Soak(
        system, [&plan] { return plan.Next(); }, options.goals));
}

}  // namespace

int main(int count, char** arguments) {
    SoakOptions options;
    if (const std::optional<int> status = SoakCommandLine(options).Run(count, arguments)) {
        return *status;
    }
    return Run(options);
}
