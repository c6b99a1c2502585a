#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <ctime>

#include "Bench/Endurance/Flood.h"
#include "Bench/Endurance/SoakOptions.h"

namespace {

constexpr int Passed = 0;
constexpr int Failed = 1;
constexpr int WrongArgument = 2;

volatile sig_atomic_t g_signal = 0;

int Refuse(const std::string& error) {
    std::fprintf(stderr, "soak: %s\n", error.c_str());
    return WrongArgument;
}

// In the test state the second link is up, and nothing but errors goes to the log.
const Bench::SettingList FloodSettings = {{"StartInTestMode", "true"}, {"LoggingLevel", "CRITICAL_LOG_LEVEL"}};

int RunFlood(const Bench::SoakOptions& options, const Bench::SubjectPlaces& places) {
    Bench::BoardSetup setup;
    setup.speed = options.speed;
    setup.startSeconds = std::time(nullptr);
    setup.seed = options.seed;
    Bench::Subject subject;
    std::string error;
    if (!subject.Prepare(places, setup, FloodSettings, error) || !subject.Start(error)) {
        return Refuse(error);
    }
    Bench::Flood flood(subject, {options.flood, options.seed, options.rate});
    const bool isWell = flood.Run(g_signal, error);
    subject.Stop();
    std::printf("%s: %s%s\n", flood.Describe().c_str(), isWell ? "passed" : "FAILED, ", error.c_str());
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
    if (!(options.flood > 0.0)) {
        return Refuse("nothing to do; --help lists what there is");
    }
    struct sigaction action {};
    action.sa_handler = [](int signal) { g_signal = signal; };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
    return RunFlood(options, {options.program.empty() ? BENCH_PROGRAM : options.program, BENCH_LIBRARY, BENCH_CLIPS,
                              BENCH_CONFIGURATION, options.bench.empty() ? SOAK_FOLDER : options.bench});
}
