// ./measure: memory, time and idle load of the analyzer, on the virtual board in real time.
#include <sched.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "Bench/Common/CommandLine.h"
#include "Bench/Common/Program.h"
#include "Bench/Common/Text.h"
#include "Bench/Tools/Measure/CycleWatch.h"
#include "Bench/Tools/Measure/Figures.h"
#include "Bench/Tools/Measure/LampToDisk.h"
#include "Bench/Tools/Measure/ProcessView.h"

namespace {

using namespace Bench;

constexpr double PrescribedResetSeconds = 12.0;  // 1 s before the router's end, 1 s before the log's, 10 s of a start
constexpr int LampPriority = 20;
constexpr double CycleTimeoutSeconds = 120.0;  // of one hurried
constexpr int EndOfReadingMilliseconds = 20;

void Report(const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); }

struct MeasureOptions {
    int cycles = 3;
    int resets = 7;
    int records = 25;
    int starts = 5;
    std::string arm;    // the stripped program; empty: not measured
    std::string bench;  // empty: build/measure
};

CommandLine MeasureCommandLine(MeasureOptions& options) {
    CommandLine line("measure",
                     "Measures the analyzer's memory, time and processor use on the virtual board, in\nreal time.",
                     "Exit status: 0 if every figure is met, 1 if one is missed, 2 if one can't be\nmeasured.");
    constexpr int Max = 10000;
    line.AddNumber("--cycles N", 1, Max, options.cycles, "whole cycles of two and a half minutes (3)");
    line.AddNumber("--resets N", 1, Max, options.resets, "from RESET_SYSTEM to IDLE_STATE, 12 s each (7)");
    line.AddNumber("--records N", 1, Max, options.records,
                   "short cycles, from the last reading to the flushed\nrecord (25)");
    line.AddNumber("--starts N", 1, Max, options.starts, "readings of the memory, one for each start (5)");
    line.AddText("--arm FILE", "a file", options.arm, "the stripped program for the instrument's processor");
    line.AddText("--bench DIR", "a folder", options.bench, "folder of the runs (build/measure)");
    return line;
}

// While it exists, this process and its children run on one processor, as on the instrument, and if allowed with
// priority: both sides of a ratio then meet the same machine.
class OneProcessor {
public:
    OneProcessor() {
        sched_getaffinity(0, sizeof(m_before), &m_before);
        cpu_set_t one;
        CPU_ZERO(&one);
        std::size_t last = CPU_SETSIZE - 1;
        while (last > 0 && !CPU_ISSET(last, &m_before)) {
            --last;
        }
        CPU_SET(last, &one);
        sched_setaffinity(0, sizeof(one), &one);
        const sched_param priority{LampPriority};
        m_hasPriority = sched_setscheduler(0, SCHED_FIFO, &priority) == 0;
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;
    ~OneProcessor() {
        const sched_param normal{};
        sched_setscheduler(0, SCHED_OTHER, &normal);
        sched_setaffinity(0, sizeof(m_before), &m_before);
    }

    const char* Text() const { return m_hasPriority ? "on one processor, with priority" : "on one processor"; }

private:
    cpu_set_t m_before{};
    bool m_hasPriority = false;
};

Places PlacesOf(const MeasureOptions& options) {
    Places places = PlacesOfBuild("measure");
    places.bench = options.bench.empty() ? places.bench : options.bench;
    return places;
}

bool MeasureResets(const MeasureOptions& options, const SettingsFile& settings, Figures& figures, std::string& error) {
    SettingsFile logged = settings;
    logged.SetAll("LoggingLevel", "DEBUG_LOG_LEVEL");
    const std::unique_ptr<Fixture> fixture = Fixture::Start(PlacesOf(options), logged, error);
    if (!fixture || fixture->WaitForIdle() < 0.0) {
        error = error.empty() ? "the analyzer does not become idle" : error;
        return false;
    }
    std::vector<double> milliseconds;
    for (int reset = 0; reset < options.resets; ++reset) {
        const std::size_t links = fixture->Connections();
        const double start = fixture->OnBoard().Seconds();
        fixture->Send(FrontEnd::Reset);
        const double idle = fixture->WaitForIdle();
        if (idle < 0.0 || !fixture->WaitForConnection(links)) {
            error = "no IDLE_STATE after a reset";
            return false;
        }
        milliseconds.push_back((idle - start - PrescribedResetSeconds) * 1000.0);
    }
    const auto [min, max] = std::minmax_element(milliseconds.begin(), milliseconds.end());
    figures.Add("reset to idle over its sleeps", Median(milliseconds), 60.0, "ms",
                Format("median of %d resets, %.2f to %.2f ms, without the %.0f s of its required sleeps",
                       options.resets, *min, *max, PrescribedResetSeconds));
    return true;
}

// Between two readings of the second cycle.
bool ProductMemory(const MeasureOptions& options, const SettingsFile& settings, int& threads, ResidentMemory& memory,
                   std::string& error) {
    const std::unique_ptr<Fixture> fixture = Fixture::Start(PlacesOf(options), settings, error);
    if (!fixture) {
        return false;
    }
    Board& board = fixture->OnBoard();
    fixture->Send(FrontEnd::Running);
    fixture->SetFast(true);
    const bool recorded = board.WaitUntil([&board] { return RecordBytes(board) > 0; }, CycleTimeoutSeconds);
    fixture->SetFast(false);
    const std::size_t readings = board.CommandCount();
    if (!recorded || !board.WaitUntil([&] { return board.CommandCount() > readings; }, CycleTimeoutSeconds)) {
        error = "no reading of a second cycle comes";
        return false;
    }
    SleepMilliseconds(EndOfReadingMilliseconds);
    threads = ActivityOf(fixture->Process()).threads;
    memory = ResidentMemoryOf(fixture->Process());
    return true;
}

// The least program with so many threads, on its own board.
bool IdleProgramMemory(const MeasureOptions& options, const SettingsFile& settings, int threads, ResidentMemory& memory,
                       std::string& error) {
    setenv("IDLE_THREADS", std::to_string(threads).c_str(), 1);
    Places places = PlacesOf(options);
    places.program = BENCH_IDLE_PROGRAM;
    const std::unique_ptr<Fixture> fixture = Fixture::StartBare(places, settings, error);
    if (!fixture) {
        return false;
    }
    const auto settled = [&fixture, threads] {
        return ActivityOf(fixture->Process()).threads == threads && IsAsleep(fixture->Process());
    };
    if (!fixture->OnBoard().WaitUntil(settled)) {
        error = "the program with idle threads does not start";
        return false;
    }
    memory = ResidentMemoryOf(fixture->Process());
    return true;
}

// Every start places the libraries elsewhere, so single readings differ by a twentieth. The board's calls are bound at
// the start of both programs.
bool MeasureMemory(const MeasureOptions& options, const SettingsFile& settings, Figures& figures, std::string& error) {
    setenv("LD_BIND_NOW", "1", 1);
    std::vector<double> product;
    std::vector<double> idle;
    for (int start = 0; start < options.starts; ++start) {
        int threads = 0;
        ResidentMemory one;
        ResidentMemory other;
        if (!ProductMemory(options, settings, threads, one, error) ||
            !IdleProgramMemory(options, settings, threads, other, error)) {
            return false;
        }
        product.push_back(static_cast<double>(one.All()));
        idle.push_back(static_cast<double>(other.All()));
    }
    unsetenv("LD_BIND_NOW");
    const auto [min, max] = std::minmax_element(product.begin(), product.end());
    const auto [idleMin, idleMax] = std::minmax_element(idle.begin(), idle.end());
    figures.Add(
        "resident memory in RUNNING_STATE", Median(product) / Median(idle), 1.6, "times a program of idle threads",
        Format("medians of %d starts each: %.0f kB (%.0f to %.0f) to %.0f kB (%.0f to %.0f) with as many threads",
               options.starts, Median(product), *min, *max, Median(idle), *idleMin, *idleMax));
    return true;
}

void AddIdleLoad(const CyclesSeen& seen, Figures& figures) {
    IdleLoad both = seen.sampling;
    both.seconds += seen.waiting.seconds;
    both.switches += seen.waiting.switches;
    both.processorSeconds += seen.waiting.processorSeconds;
    figures.Add("context switches between readings", both.SwitchesPerSecond(), 4.0, "a second",
                Format("%.2f a second in sampled steps (%.1f s looked at), %.2f in others (%.1f s)",
                       seen.sampling.SwitchesPerSecond(), seen.sampling.seconds, seen.waiting.SwitchesPerSecond(),
                       seen.waiting.seconds));
    figures.Add("processor between readings", both.ProcessorPercent(), 0.5, "% of a core",
                Format("%.4f %% in sampled steps, %.4f %% in others; without the valve's required busy wait",
                       seen.sampling.ProcessorPercent(), seen.waiting.ProcessorPercent()));
}

void AddLengths(const CyclesSeen& seen, Figures& figures) {
    std::vector<double> ratios;
    std::string detail;
    for (const CycleLength& length : seen.lengths) {
        ratios.push_back(length.seconds / length.prescribed);
        detail += Format("%s%.3f s to %.3f s (%d trials of the LED)", detail.empty() ? "" : ", ", length.seconds,
                         length.prescribed, length.trials);
    }
    figures.Add("a cycle's length", Median(ratios), 1.005, "times the sum of its waits",
                Format("median of %zu: %s", ratios.size(), detail.c_str()));
}

bool MeasureCycles(const MeasureOptions& options, const SettingsFile& settings, Figures& figures, std::string& error) {
    const std::optional<CycleSettings> cycle = ReadCycleSettings(settings, error);
    CyclesSeen seen;
    {
        const std::unique_ptr<Fixture> fixture = cycle ? Fixture::Start(PlacesOf(options), settings, error) : nullptr;
        if (!fixture || !WatchCycles(*fixture, *cycle, options.cycles, seen, error)) {
            return false;
        }
    }
    AddIdleLoad(seen, figures);
    AddLengths(seen, figures);
    return true;
}

bool MeasureLampToDisk(const MeasureOptions& options, const SettingsFile& settings, Figures& figures,
                       std::string& error) {
    const OneProcessor processor;
    const std::unique_ptr<Fixture> fixture = Fixture::Start(PlacesOf(options), WithShortSteps(settings), error);
    if (!fixture) {
        return false;
    }
    const RecordTimes times = LampToDisk(*fixture, options.records, error);
    if (times.records.empty()) {
        return false;
    }
    std::vector<double> whole;
    std::vector<double> own;
    for (const RecordTime& time : times.records) {
        whole.push_back(time.seconds);
        own.push_back(time.seconds - time.deviceSeconds);
    }
    figures.Add("lamp to disk", Median(own) / Median(times.roundTrips), 20.0, "round trips of two threads",
                Format("median of %zu records %.0f us, without the time inside the virtual device files and log; "
                       "%.0f us with it; median of %zu round trips meanwhile %.1f us; %s",
                       times.records.size(), Median(own) * 1e6, Median(whole) * 1e6, times.roundTrips.size(),
                       Median(times.roundTrips) * 1e6, processor.Text()));
    return true;
}

bool MeasureBinary(const MeasureOptions& options, Figures& figures, std::string& error) {
    struct stat status {};
    if (stat(options.arm.c_str(), &status) != 0) {
        error = "can't find the stripped program " + options.arm;
        return false;
    }
    figures.Add("stripped program for the instrument's processor", static_cast<double>(status.st_size) / 1000.0, 700.0,
                "kB", Format("%lld bytes", static_cast<long long>(status.st_size)));
    return true;
}

bool Measure(const MeasureOptions& options, Figures& figures, std::string& error) {
    SettingsFile settings;
    if (!settings.Read(PlacesOf(options).configuration, error)) {
        return false;
    }
    settings.SetAll("AutoStartMeasurement", "false");  // the bench starts it, and no sound plays meanwhile
    if (!options.arm.empty() && !MeasureBinary(options, figures, error)) {
        return false;
    }
    Report(Format("resets: %d, about %d s", options.resets, 12 * options.resets));
    if (!MeasureResets(options, settings, figures, error)) {
        return false;
    }
    Report(Format("records: %d, about %d s", options.records, 5 * options.records));
    if (!MeasureLampToDisk(options, settings, figures, error)) {
        return false;
    }
    Report(Format("starts: %d, about %d s", options.starts, 15 * options.starts));
    if (!MeasureMemory(options, settings, figures, error)) {
        return false;
    }
    Report(Format("cycles: %d, about %d s", options.cycles, 150 * options.cycles));
    return MeasureCycles(options, settings, figures, error);
}

}  // namespace

int main(int count, char** arguments) {
    MeasureOptions options;
    if (const std::optional<int> status = MeasureCommandLine(options).Run(count, arguments)) {
        return *status;
    }
    std::string error;
    Figures figures;
    if (!Measure(options, figures, error)) {
        return Refuse("measure", error);
    }
    std::printf("%s%s\n", figures.Table().c_str(), figures.LastLine().c_str());
    return figures.AllMet() ? ExitSuccess : ExitFailure;
}
