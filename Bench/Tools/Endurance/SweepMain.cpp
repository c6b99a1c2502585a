#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <thread>

#include "Bench/Common/CommandLine.h"
#include "Bench/Common/Program.h"
#include "Bench/Common/Text.h"
#include "Bench/Tools/Endurance/SweepCase.h"
#include "Bench/Tools/Endurance/SweepLedger.h"
#include "Bench/Tools/Endurance/SweepPlan.h"

namespace {

using namespace Bench;

constexpr double SecondsOfAMinute = 60.0;
constexpr std::size_t MaxDetail = 400;

struct Options {
    SweepChoice choice;
    std::uint64_t jobs = std::max(1U, std::thread::hardware_concurrency());
    double minutes = 0.0;  // after which no other trial is begun; 0: no such limit
    std::string bench;     // empty: build/sweep
    std::string program;   // empty: the analyzer of this build
};

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

CommandLine SweepCommandLine(Options& options) {
    CommandLine line("sweep",
                     "Makes the Nth call of each kind fail, for every N of a start, a cycle and a\n"
                     "reset, each in its own run.",
                     "The first runs are spread over the whole course, so a sweep can be stopped at\n"
                     "any time. It ends with a table and one line of figures. Exit status: 0 if each\n"
                     "outcome is allowed, 1 if not, 2 for a wrong argument.");
    const std::vector<std::string>& known = Board::CallKinds();
    const auto takeKind = [&options, &known](const std::string& value) {
        options.choice.kinds.push_back(value);
        return std::find(known.begin(), known.end(), value) != known.end();
    };
    line.Add("--kind NAME", "one of " + Joined(known), takeKind, "only this kind of call; may be repeated (all)");
    line.AddNumber<std::uint64_t>("--most N", 0, 1000000, options.choice.max,
                                  "at most N calls of each kind, evenly spread (all)");
    line.AddNumber<std::uint64_t>("--number N", 1, 1000000, options.choice.number,
                                  "only the Nth call of each kind (all)");
    line.AddNumber("--minutes X", 0.001, 100000.0, options.minutes, "start no further run after X minutes (no limit)");
    line.AddNumber<std::uint64_t>("--seed N", 0, 4294967295, options.choice.seed, "seed of the order of the calls (1)");
    line.AddNumber<std::uint64_t>("--jobs N", 1, 64, options.jobs, "runs at a time, 1 to 64 (one per core)");
    line.AddText("--bench DIR", "a folder", options.bench, "folder of the runs (build/sweep)");
    line.AddProgram(options.program);
    return line;
}

// One job: runs trial after trial, prints each outcome and notes it for the parent.
void RunJob(const Options& options, Places places, const SweepBaseline& baseline, const std::vector<SweepTrial>& trials,
            SweepLedger& ledger, std::uint64_t job) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const auto hasTime = [&] {
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        return options.minutes <= 0.0 || seconds < options.minutes * SecondsOfAMinute;
    };
    places.bench += "/" + std::to_string(job);
    SweepCase runner(places);
    while (hasTime()) {
        const std::optional<std::size_t> at = ledger.Begin();
        if (!at) {
            return;
        }
        const SweepTrial& trial = trials[*at];
        const SweepReport report = runner.Try(trial.kind, trial.n, baseline);
        ledger.Note(*at, report.outcome);
        const std::string text = trial.kind + " " + std::to_string(trial.n) + ": " + NameOf(report.outcome) +
                                 (report.detail.empty() ? "" : ", " + report.detail.substr(0, MaxDetail)) + "\n";
        if (write(STDOUT_FILENO, text.data(), text.size()) < 0) {
            return;
        }
    }
}

// Each job is a process: the program of one must not inherit the descriptors of another.
void RunTrials(const Options& options, const Places& places, const SweepBaseline& baseline,
               const std::vector<SweepTrial>& trials, SweepLedger& ledger) {
    std::vector<pid_t> workers;
    for (std::uint64_t job = 0; job < options.jobs; ++job) {
        const pid_t worker = fork();
        if (worker == 0) {
            RunJob(options, places, baseline, trials, ledger, job);
            _exit(0);
        }
        workers.push_back(worker);
    }
    for (const pid_t worker : workers) {
        waitpid(worker, nullptr, 0);
    }
}

int ShowTable(const SweepBaseline& baseline, const std::vector<SweepTrial>& trials, const SweepLedger& ledger) {
    std::map<std::string, std::map<SweepOutcome, int>> table;
    int tried = 0;
    int forbidden = 0;
    for (std::size_t at = 0; at < trials.size(); ++at) {
        if (const std::optional<SweepOutcome> outcome = ledger.OutcomeOf(at)) {
            ++table[trials[at].kind][*outcome];
            ++tried;
            forbidden += IsAllowed(*outcome) ? 0 : 1;
        }
    }
    std::printf("\n%-16s %8s %6s  %s\n", "call", "calls", "tried", "outcomes");
    std::uint64_t calls = 0;
    for (const auto& [kind, outcomes] : table) {
        std::string text;
        int triedOfKind = 0;
        for (const auto& [outcome, count] : outcomes) {
            triedOfKind += count;
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + NameOf(outcome);
        }
        calls += baseline.calls.at(kind);
        std::printf("%-16s %8llu %6d  %s\n", kind.c_str(), static_cast<unsigned long long>(baseline.calls.at(kind)),
                    triedOfKind, text.c_str());
    }
    const bool passed = tried > 0 && forbidden == 0;
    std::printf("sweep: %zu kinds, %d of %llu calls failed one by one, %d outcomes that are not allowed: %s\n",
                table.size(), tried, static_cast<unsigned long long>(calls), forbidden, passed ? "passed" : "FAILED");
    return passed ? ExitSuccess : ExitFailure;
}

}  // namespace

int main(int count, char** arguments) {
    Options options;
    if (const std::optional<int> status = SweepCommandLine(options).Run(count, arguments)) {
        return *status;
    }
    Places places = PlacesOfBuild("sweep");
    places.library.insert(0, BENCH_ALLOCATIONS_LIBRARY);
    places.program = options.program.empty() ? places.program : options.program;
    places.bench = options.bench.empty() ? places.bench : options.bench;
    Places first = places;
    first.bench += "/baseline";
    SweepBaseline baseline;
    std::string trouble;
    if (!SweepCase(first).RunBaseline(baseline, trouble)) {
        std::printf("sweep: FAILED, %s\n", trouble.c_str());
        return ExitFailure;
    }
    const std::vector<SweepTrial> trials = PlanSweep(baseline.calls, options.choice);
    SweepLedger ledger(trials.size());
    if (!ledger.IsMade()) {
        std::printf("sweep: FAILED, no memory\n");
        return ExitFailure;
    }
    RunTrials(options, places, baseline, trials, ledger);
    return ShowTable(baseline, trials, ledger);
}
