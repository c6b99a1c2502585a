#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <thread>

#include "Bench/Endurance/SweepCase.h"
#include "Bench/Endurance/SweepLedger.h"
#include "Bench/Endurance/SweepPlan.h"
#include "Bench/Peers/Script.h"

namespace {

using namespace Bench;

constexpr int Passed = 0;
constexpr int Failed = 1;
constexpr int WrongArgument = 2;
constexpr int References = 3;
constexpr std::uint64_t JobsOfACore = 3;  // a run waits for most of its time
constexpr double SecondsOfAMinute = 60.0;
constexpr double LongestMinutes = 100000.0;
constexpr std::size_t LongestDetail = 400;

struct Options {
    SweepChoice choice;
    std::uint64_t jobs = std::max(1U, std::thread::hardware_concurrency()) * JobsOfACore;
    double minutes = 0.0;  // after which no other trial is begun; 0: no such limit
    double speed = 200.0;
    std::string bench = SWEEP_FOLDER;
    std::string program = BENCH_PROGRAM;
};

constexpr char Help[] =
    R"(./sweep lets the Nth call of each kind fail, for every N of a start, a cycle and a reset, each in a run of its own.

  --kind NAME      only that kind; may be repeated (all)
  --most N         at most N calls of each kind, evenly spread (all)
  --number N       the Nth call of each kind alone (all)
  --minutes X      begin no other run after so many minutes (no limit)
  --seed N         where the order of the calls begins (1)
  --jobs N         runs at a time (3 for each core)
  --speed X        simulated seconds for one real second (200)
  --bench DIR      where the runs' files lie (build/sweep)
  --program FILE   another program in the analyzer's place

Whatever is tried first is spread over the whole course, so that a sweep may be stopped at any time.
It ends with a table and one line of figures. Exit status: 0 if each outcome is allowed, 1 if not, 2 for a wrong argument.
)";

int Refuse(const std::string& error) {
    std::fprintf(stderr, "sweep: %s\n", error.c_str());
    return WrongArgument;
}

bool Take(Options& options, const std::string& name, const std::string& value) {
    if (name == "--kind") {
        options.choice.kinds.push_back(value);
        const std::vector<std::string>& known = Board::CallKinds();
        return std::find(known.begin(), known.end(), value) != known.end();
    }
    if (name == "--most") {
        return ReadCount(value, 1000000, options.choice.most);
    }
    if (name == "--number") {
        return ReadCount(value, 1000000, options.choice.number) && options.choice.number > 0;
    }
    if (name == "--minutes") {
        return ReadDecimal(value, LongestMinutes, options.minutes) && options.minutes > 0.0;
    }
    if (name == "--seed") {
        return ReadCount(value, 0xFFFFFFFF, options.choice.seed);
    }
    if (name == "--jobs") {
        return ReadCount(value, 64, options.jobs) && options.jobs > 0;
    }
    if (name == "--speed") {
        return ReadDecimal(value, 1000.0, options.speed) && options.speed >= 0.1;
    }
    if (name == "--program") {
        options.program = value;
        return access(value.c_str(), X_OK) == 0;
    }
    options.bench = value;
    return name == "--bench" && !value.empty();
}

// One job: trial after trial, each told at once and noted for the parent.
void RunJob(const Options& options, SubjectPlaces places, const SweepReference& reference,
            const std::vector<SweepTrial>& trials, SweepLedger& ledger, std::uint64_t job) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const auto hasTime = [&] {
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        return options.minutes <= 0.0 || seconds < options.minutes * SecondsOfAMinute;
    };
    places.bench += "/" + std::to_string(job);
    SweepCase runner(places, options.speed);
    while (hasTime()) {
        const std::optional<std::size_t> at = ledger.Begin();
        if (!at) {
            return;
        }
        const SweepTrial& trial = trials[*at];
        const SweepReport report = runner.Try(trial.kind, trial.n, reference);
        ledger.Note(*at, report.outcome);
        const std::string text = trial.kind + " " + std::to_string(trial.n) + ": " + NameOf(report.outcome) +
                                 (report.detail.empty() ? "" : ", " + report.detail.substr(0, LongestDetail)) + "\n";
        if (write(STDOUT_FILENO, text.data(), text.size()) < 0) {
            return;
        }
    }
}

// Each job is a process: what one starts must not hold the other's descriptors.
void RunTrials(const Options& options, const SubjectPlaces& places, const SweepReference& reference,
               const std::vector<SweepTrial>& trials, SweepLedger& ledger) {
    std::vector<pid_t> workers;
    for (std::uint64_t job = 0; job < options.jobs; ++job) {
        const pid_t worker = fork();
        if (worker == 0) {
            RunJob(options, places, reference, trials, ledger, job);
            _exit(0);
        }
        workers.push_back(worker);
    }
    for (const pid_t worker : workers) {
        waitpid(worker, nullptr, 0);
    }
}

int ShowTable(const SweepReference& reference, const std::vector<SweepTrial>& trials, const SweepLedger& ledger) {
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
        calls += reference.calls.at(kind);
        std::printf("%-16s %8llu %6d  %s\n", kind.c_str(), static_cast<unsigned long long>(reference.calls.at(kind)),
                    triedOfKind, text.c_str());
    }
    const bool passed = tried > 0 && forbidden == 0;
    std::printf("sweep: %zu kinds, %d of %llu calls failed one by one, %d outcomes that are not allowed: %s\n",
                table.size(), tried, static_cast<unsigned long long>(calls), forbidden, passed ? "passed" : "FAILED");
    return passed ? Passed : Failed;
}

}  // namespace

int main(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; i += 2) {
        const std::string name = arguments[i];
        if (name == "--help") {
            std::fputs(Help, stdout);
            return Passed;
        }
        const std::string value = i + 1 < count ? arguments[i + 1] : "";
        if (!Take(options, name, value)) {
            std::string error = name;
            error.append(" \"").append(value).append("\" is not understood; --help lists what there is");
            return Refuse(error);
        }
    }
    const SubjectPlaces places{options.program, BENCH_ALLOCATIONS_LIBRARY BENCH_LIBRARY, BENCH_CLIPS,
                               BENCH_CONFIGURATION, options.bench};
    SubjectPlaces first = places;
    first.bench += "/reference";
    SweepReference reference;
    std::string trouble;
    // Three times, since the lines of a start are not always the same.
    std::map<std::string, std::vector<std::uint64_t>> counts;
    for (int time = 0; time < References; ++time) {
        if (!SweepCase(first, options.speed).Refer(reference, trouble)) {
            std::printf("sweep: FAILED, %s\n", trouble.c_str());
            return Failed;
        }
        for (const auto& [kind, calls] : reference.calls) {
            counts[kind].push_back(calls);
        }
    }
    for (auto& [kind, calls] : counts) {
        std::sort(calls.begin(), calls.end());
        reference.calls[kind] = calls[calls.size() / 2];
    }
    const std::vector<SweepTrial> trials = PlanSweep(reference.calls, options.choice);
    SweepLedger ledger(trials.size());
    if (!ledger.IsMade()) {
        std::printf("sweep: FAILED, no memory\n");
        return Failed;
    }
    RunTrials(options, places, reference, trials, ledger);
    return ShowTable(reference, trials, ledger);
}
