#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>

#include "Bench/Endurance/Dice.h"
#include "Bench/Endurance/SweepCase.h"
#include "Bench/Peers/Script.h"

namespace {

using namespace Bench;

constexpr int Passed = 0;
constexpr int Failed = 1;
constexpr int WrongArgument = 2;
constexpr int References = 3;

struct Options {
    std::vector<std::string> kinds;  // empty: all
    std::uint64_t most = 0;          // of each kind, drawn by the seed; 0: every N
    std::uint64_t seed = 1;
    std::uint64_t jobs = 2;
    double speed = 200.0;
    std::string bench = SWEEP_FOLDER;
    std::string program = BENCH_PROGRAM;
};

constexpr char Help[] =
    R"(./sweep lets the Nth call of each kind fail, for every N of a start, a cycle and a reset, each in a run of its own.

  --kind NAME      only that kind; may be repeated (all)
  --most N         at most N calls of each kind, drawn by the seed (all)
  --seed N         (1)
  --jobs N         runs at a time (2)
  --speed X        simulated seconds for one real second (200)
  --bench DIR      where the runs' files lie (build/sweep)
  --program FILE   another program in the analyzer's place

It ends with a table and one line of figures. Exit status: 0 if each outcome is allowed, 1 if not, 2 for a wrong argument.
)";

int Refuse(const std::string& error) {
    std::fprintf(stderr, "sweep: %s\n", error.c_str());
    return WrongArgument;
}

bool Take(Options& options, const std::string& name, const std::string& value) {
    if (name == "--kind") {
        options.kinds.push_back(value);
        const std::vector<std::string>& known = Board::CallKinds();
        return std::find(known.begin(), known.end(), value) != known.end();
    }
    if (name == "--most") {
        return ReadCount(value, 1000000, options.most);
    }
    if (name == "--seed") {
        return ReadCount(value, 0xFFFFFFFF, options.seed);
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

struct Trial {
    std::string kind;
    int n = 0;
    SweepReport report;
};

// Without a limit each N once; with one, so many of them by the seed.
std::vector<Trial> Trials(const Options& options, const SweepReference& reference) {
    std::vector<Trial> trials;
    Dice dice(static_cast<std::uint32_t>(options.seed));
    for (const std::string& kind : options.kinds.empty() ? Board::CallKinds() : options.kinds) {
        const auto count = static_cast<std::uint32_t>(reference.calls.at(kind));
        std::vector<int> numbers;
        for (std::uint32_t n = 1; n <= count; ++n) {
            numbers.push_back(static_cast<int>(n));
        }
        while (options.most > 0 && numbers.size() > options.most) {
            numbers.erase(numbers.begin() + dice.Below(static_cast<std::uint32_t>(numbers.size())));
        }
        for (const int n : numbers) {
            trials.push_back({kind, n, {}});
        }
    }
    return trials;
}

std::string ReportFile(const std::string& bench, std::uint64_t job) {
    return bench + "/" + std::to_string(job) + ".reports";
}

// One job: every so many trials, each told at once and noted for the parent.
void RunJob(const Options& options, const SubjectPlaces& places, const SweepReference& reference,
            const std::vector<Trial>& trials, std::uint64_t job) {
    SubjectPlaces own = places;
    own.bench += "/" + std::to_string(job);
    SweepCase runner(own, options.speed);
    std::ofstream(ReportFile(options.bench, job), std::ios::trunc).close();
    for (std::size_t at = job; at < trials.size(); at += options.jobs) {
        const SweepReport report = runner.Try(trials[at].kind, trials[at].n, reference);
        const std::string text = trials[at].kind + " " + std::to_string(trials[at].n) + ": " + NameOf(report.outcome) +
                                 (report.detail.empty() ? "" : ", " + report.detail) + "\n";
        // Open for this moment alone, so that no run has its descriptor.
        std::ofstream reports(ReportFile(options.bench, job), std::ios::app);
        reports << at << ' ' << static_cast<int>(report.outcome) << std::endl;
        if (write(STDOUT_FILENO, text.data(), text.size()) < 0) {
            return;
        }
    }
}

// Each job is a process: what one starts must not hold the other's descriptors. A trial without a report has failed.
void RunTrials(const Options& options, const SubjectPlaces& places, const SweepReference& reference,
               std::vector<Trial>& trials) {
    std::vector<pid_t> workers;
    for (std::uint64_t job = 0; job < options.jobs; ++job) {
        const pid_t worker = fork();
        if (worker == 0) {
            RunJob(options, places, reference, trials, job);
            _exit(0);
        }
        workers.push_back(worker);
    }
    for (const pid_t worker : workers) {
        waitpid(worker, nullptr, 0);
    }
    for (Trial& trial : trials) {
        trial.report.outcome = SweepOutcome::Hung;
    }
    for (std::uint64_t job = 0; job < options.jobs; ++job) {
        std::ifstream reports(ReportFile(options.bench, job));
        std::size_t at = 0;
        int outcome = 0;
        while (reports >> at >> outcome && at < trials.size()) {
            trials[at].report.outcome = static_cast<SweepOutcome>(outcome);
        }
    }
}

int ShowTable(const SweepReference& reference, const std::vector<Trial>& trials) {
    std::map<std::string, std::map<SweepOutcome, int>> table;
    int forbidden = 0;
    for (const Trial& trial : trials) {
        ++table[trial.kind][trial.report.outcome];
        forbidden += IsAllowed(trial.report.outcome) ? 0 : 1;
    }
    std::printf("\n%-16s %8s %6s  %s\n", "call", "calls", "tried", "outcomes");
    for (const auto& [kind, outcomes] : table) {
        std::string text;
        int tried = 0;
        for (const auto& [outcome, count] : outcomes) {
            tried += count;
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + NameOf(outcome);
        }
        std::printf("%-16s %8llu %6d  %s\n", kind.c_str(), static_cast<unsigned long long>(reference.calls.at(kind)),
                    tried, text.c_str());
    }
    std::printf("sweep: %zu kinds, %zu calls failed one by one, %d outcomes that are not allowed: %s\n", table.size(),
                trials.size(), forbidden, forbidden == 0 ? "passed" : "FAILED");
    return forbidden == 0 ? Passed : Failed;
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
    const SubjectPlaces places{options.program, BENCH_LIBRARY, BENCH_CLIPS, BENCH_CONFIGURATION, options.bench};
    SubjectPlaces first = places;
    first.bench += "/reference";
    SweepReference reference;
    std::string trouble;
    // Three times, since the lines of a start are not always the same.
    for (int time = 0; time < References; ++time) {
        if (!SweepCase(first, options.speed).Refer(reference, trouble)) {
            std::printf("sweep: FAILED, %s\n", trouble.c_str());
            return Failed;
        }
    }
    std::vector<Trial> trials = Trials(options, reference);
    RunTrials(options, places, reference, trials);
    return ShowTable(reference, trials);
}
