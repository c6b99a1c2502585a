#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "Bench/Endurance/Flood.h"
#include "Bench/Endurance/Soak.h"
#include "Bench/Endurance/SoakOptions.h"

namespace {

constexpr int Passed = 0;
constexpr int Failed = 1;
constexpr int WrongArgument = 2;

constexpr std::int64_t StartSeconds = 1798758000;  // 2026-12-31 23:00:00 UTC

volatile sig_atomic_t g_signal = 0;

int Refuse(const std::string& error) {
    std::fprintf(stderr, "soak: %s\n", error.c_str());
    return WrongArgument;
}

// With a reset the analyzer goes to the test state by itself, so that the second link is up; more of the log than
// faults is not needed.
const Bench::SettingList Settings = {{"StartInTestMode", "true"}, {"LoggingLevel", "CRITICAL_LOG_LEVEL"}};

bool RunFlood(Bench::Subject& subject, const Bench::SoakOptions& options, std::string& figures, std::string& trouble) {
    Bench::Flood flood(subject, {options.flood, options.seed, options.rate});
    const bool isWell = flood.Run(g_signal, trouble);
    figures = flood.Describe();
    return isWell;
}

bool RunSoak(Bench::Subject& subject, const Bench::SoakOptions& options, std::string& figures, std::string& trouble) {
    Bench::Soak soak(subject, options.seed, {options.cycles, options.resets, options.days});
    const bool isWell = soak.Run(g_signal, trouble);
    figures = soak.Describe();
    return isWell;
}

int Run(const Bench::SoakOptions& options, const Bench::SubjectPlaces& places) {
    const bool isFlood = options.flood > 0.0;
    Bench::BoardSetup setup;
    setup.speed = options.speed > 0.0 ? options.speed : isFlood ? 20.0 : 200.0;
    setup.startSeconds = StartSeconds;
    setup.seed = options.seed;
    Bench::Subject subject;
    std::string trouble;
    std::string figures;
    if (!subject.Prepare(places, setup, Settings, trouble) || !subject.Start(trouble)) {
        return Refuse(trouble);
    }
    const bool isWell =
        isFlood ? RunFlood(subject, options, figures, trouble) : RunSoak(subject, options, figures, trouble);
    subject.Stop();
    std::printf("%s: %s%s\n", figures.c_str(), isWell ? "passed" : "FAILED, ", isWell ? "" : trouble.c_str());
    return isWell ? Passed : Failed;
}

}  // namespace

int main(int count, char** arguments) {
    Bench::SoakOptions options;
    std::string error;
    if (!Bench::ReadSoakOptions({arguments + 1, arguments + count}, options, error)) {
        return Refuse(error);
    }
    if (options.help) {
        std::fputs(Bench::SoakHelpText().c_str(), stdout);
        return Passed;
    }
    if (!options.program.empty() && access(options.program.c_str(), X_OK) != 0) {
        return Refuse("can't run the program " + options.program);
    }
    if (!(options.flood > 0.0) && options.cycles == 0 && options.resets == 0 && !(options.days > 0.0)) {
        return Refuse("nothing to do; --help lists what there is");
    }
    struct sigaction action {};
    action.sa_handler = [](int signal) { g_signal = signal; };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
    return Run(options, {options.program.empty() ? BENCH_PROGRAM : options.program, BENCH_LIBRARY, BENCH_CLIPS,
                         BENCH_CONFIGURATION, options.bench.empty() ? SOAK_FOLDER : options.bench});
}
