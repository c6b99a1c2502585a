#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include "Bench/Common/CommandLine.h"
#include "Bench/Common/Program.h"
#include "Bench/Common/Text.h"
#include "Bench/Deterministic/Policy.h"
#include "Bench/Tools/Endurance/Explorer.h"

namespace {

using namespace Bench;

constexpr int RunsToShorten = 60;

struct Options {
    std::uint32_t seeds = 100;
    std::uint32_t first = 1;
    std::optional<std::uint32_t> seed;
    std::string policy;
    std::string course;
    std::string trace;
    double minutes = 10.0;
    std::uint32_t jobs = std::max(1U, std::thread::hardware_concurrency());
    std::string bench;
    std::string program;
};

CommandLine ExploreCommandLine(Options& options) {
    CommandLine line("explore",
                     "Runs the analyzer in exact time with random commands, faults and orders of its\n"
                     "threads, one run for each seed, and judges each run.",
                     "A finding is one line: its seed, what is wrong, what each thread waited for, and\n"
                     "the command that replays it, after its course has been shortened. Exit status: 0\n"
                     "if there was none, 1 if there was, 2 for a wrong argument.");
    line.AddNumber<std::uint32_t>("--seeds N", 1, 100000000, options.seeds, "how many runs (100)");
    line.AddNumber<std::uint32_t>("--first-seed N", 0, 4000000000U, options.first, "seed of the first run (1)");
    line.AddNumber<std::uint32_t>("--seed N", 0, 4000000000U, options.seed, "only the run of that seed");
    line.AddText("--policy TEXT", "a policy", options.policy,
                 "who runs next: random, sticky:P, priority:P,\nuntil-blocked or stalls:P (drawn from the seed)");
    line.AddText("--course FILE", "a file", options.course, "only the run that the file describes");
    line.AddText("--trace FILE", "a file", options.trace, "with --seed or --course: all events of the run");
    line.AddNumber("--minutes X", 0.1, 100000.0, options.minutes, "simulated length of the commands in a run (10)");
    line.AddNumber<std::uint32_t>("--jobs N", 1, 64, options.jobs, "runs at a time (one for each processor)");
    line.AddText("--bench DIR", "a folder", options.bench, "folder of the runs (build/explore)");
    line.AddProgram(options.program);
    line.AddCheck([&options]() -> std::string {
        std::string error;
        if (!options.policy.empty() && !Policy::Read(options.policy, 0, error)) {
            return "--policy: " + error;
        }
        if (!options.course.empty() && (options.seed || !options.policy.empty())) {
            return "--course: not together with --seed or --policy, which the file gives";
        }
        const bool single = options.seed || !options.course.empty();
        return options.trace.empty() || single ? "" : "--trace: only with --seed or --course";
    });
    return line;
}

std::string FolderOf(const Options& options) {
    return options.bench.empty() ? PlacesOfBuild("explore").bench : options.bench;
}

Places PlacesOf(const Options& options, std::uint32_t job) {
    Places places = PlacesOfBuild("explore");
    places.program = options.program.empty() ? places.program : options.program;
    places.bench = FolderOf(options) + "/" + std::to_string(job);
    return places;
}

// The file with the course, for a replay.
std::string Keep(const Course& course, const std::string& folder) {
    const std::string path = folder + "/seed-" + std::to_string(course.seed) + ".course";
    std::ofstream file(path);
    file << WriteCourse(course);
    return file.flush() ? path : path + " (which could not be written)";
}

std::string Describe(const Course& course, const Finding& finding, const std::string& file) {
    return Format("seed %u: %s; %zu events; ", course.seed, finding.trouble.c_str(), course.events.size()) +
           finding.waits + "; replay: ./explore --course " + file;
}

std::optional<Course> CourseOf(const Options& options, std::string& error) {
    if (options.course.empty()) {
        return DrawCourse(*options.seed, options.policy, options.minutes);
    }
    std::ifstream file(options.course);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) {
        error = "can't read it";
        return std::nullopt;
    }
    return ReadCourse(text.str(), error);
}

int RunOne(const Options& options) {
    std::string error;
    const std::optional<Course> course = CourseOf(options, error);
    if (!course) {
        return Refuse("explore", options.course + ": " + error);
    }
    if (!options.trace.empty() && !std::ofstream(options.trace, std::ios::trunc)) {
        return Refuse("explore", "--trace: can't write " + options.trace);
    }
    Explorer explorer(PlacesOf(options, 0));
    const std::string trace = options.trace.empty() ? "" : std::filesystem::absolute(options.trace).string();
    const std::optional<Finding> finding = explorer.Run(*course, trace);
    std::printf("seed %u, policy %s, %zu events, %.0f simulated seconds, hash %016llx: %s\n", course->seed,
                course->policy.c_str(), course->events.size(), explorer.Seconds(),
                static_cast<unsigned long long>(explorer.Hash()), finding ? finding->trouble.c_str() : "passed");
    if (finding) {
        std::string waits = finding->waits;
        std::replace(waits.begin(), waits.end(), ';', '\n');
        std::printf("%s\n", waits.c_str());
    }
    return finding ? ExitFailure : ExitSuccess;
}

// The runs of one process. For each a line goes to the pipe: the simulated seconds, and the finding if there is one.
void RunJob(const Options& options, std::uint32_t job, int pipe) {
    Explorer explorer(PlacesOf(options, job));
    for (std::uint32_t i = job; i < options.seeds; i += options.jobs) {
        const double before = explorer.Seconds();
        Course course = DrawCourse(options.first + i, options.policy, options.minutes);
        std::string text;
        if (const std::optional<Finding> finding = explorer.Run(course)) {
            course = explorer.Shorten(course, *finding, RunsToShorten);
            text = Describe(course, *finding, Keep(course, FolderOf(options)));
        }
        const std::string line = Format("%.0f ", explorer.Seconds() - before) + text + "\n";
        if (write(pipe, line.data(), line.size()) < 0) {
            return;
        }
    }
}

class Progress {
public:
    explicit Progress(std::uint32_t seeds) : m_seeds(seeds) {}

    void Take(const std::string& line) {
        const std::size_t space = line.find(' ');
        m_simulated += std::strtod(line.c_str(), nullptr);
        ++m_done;
        if (space + 1 < line.size()) {
            ++m_findings;
            std::printf("%s%s\n", isatty(STDOUT_FILENO) != 0 ? "\r\x1b[K" : "", line.substr(space + 1).c_str());
        }
        if (isatty(STDOUT_FILENO) != 0) {
            const double left = Elapsed() / m_done * (m_seeds - m_done);
            std::printf("\r\x1b[K%u of %u seeds, %.2f a second, %.0f s left", m_done, m_seeds, m_done / Elapsed(),
                        left);
        }
        std::fflush(stdout);
    }

    int End() const {
        const bool whole = m_done == m_seeds;
        std::printf("%s%u of %u seeds, %.2f simulated days in %.0f s, %u findings: %s\n",
                    isatty(STDOUT_FILENO) != 0 ? "\r\x1b[K" : "", m_done, m_seeds, m_simulated / 86400.0, Elapsed(),
                    m_findings, whole && m_findings == 0 ? "passed" : "FAILED");
        return whole && m_findings == 0 ? ExitSuccess : ExitFailure;
    }

private:
    using Clock = std::chrono::steady_clock;

    double Elapsed() const { return std::chrono::duration<double>(Clock::now() - m_start).count(); }

    std::uint32_t m_seeds;
    std::uint32_t m_done = 0;
    std::uint32_t m_findings = 0;
    double m_simulated = 0.0;
    Clock::time_point m_start = Clock::now();
};

int RunAll(const Options& options) {
    int ends[2];
    if (pipe(ends) != 0) {
        return Refuse("explore", "no pipe");
    }
    for (std::uint32_t job = 0; job < options.jobs; ++job) {
        if (fork() == 0) {
            close(ends[0]);
            RunJob(options, job, ends[1]);
            _exit(0);
        }
    }
    close(ends[1]);
    Progress progress(options.seeds);
    std::string rest;
    char piece[4096];
    for (ssize_t got = 0; (got = read(ends[0], piece, sizeof piece)) > 0;) {
        rest.append(piece, static_cast<std::size_t>(got));
        for (std::size_t end = rest.find('\n'); end != std::string::npos; end = rest.find('\n')) {
            progress.Take(rest.substr(0, end));
            rest.erase(0, end + 1);
        }
    }
    while (wait(nullptr) > 0) {
    }
    return progress.End();
}

}  // namespace

int main(int count, char** arguments) {
    Options options;
    if (const std::optional<int> status = ExploreCommandLine(options).Run(count, arguments)) {
        return *status;
    }
    return options.seed || !options.course.empty() ? RunOne(options) : RunAll(options);
}
