// ./measure: how little the analyzer takes and how calm it is, on the virtual board and in time with the clock.
#include <poll.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "Bench/Measure/CycleWatch.h"
#include "Bench/Measure/Figures.h"
#include "Bench/Measure/LampToDisk.h"
#include "Bench/Measure/MeasureOptions.h"
#include "Bench/Measure/RoundTrip.h"

namespace {

using namespace Bench;

constexpr double PrescribedResetSeconds = 12.0;  // 1 s before the router's end, 1 s before the log's, 10 s of a start
constexpr int RoundTripsPerBlock = 2000;

[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...) {
    char text[512];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof(text), format, values);
    va_end(values);
    return text;
}

void Tell(const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); }

int Fail(const std::string& error) {
    Tell("measure: " + error);
    return 2;
}

RigPlaces Places(const std::string& program, const MeasureOptions& options) {
    return {program, BENCH_LIBRARY, BENCH_CLIPS, options.bench};
}

bool MeasureResets(const MeasureOptions& options, const std::string& configuration, Figures& figures,
                   std::string& error) {
    const std::unique_ptr<Rig> rig =
        Rig::Start(Places(BENCH_PROGRAM, options), WithItem(configuration, "LoggingLevel", "DEBUG_LOG_LEVEL"), error);
    if (!rig || rig->WaitForIdle() < 0.0) {
        error = error.empty() ? "the analyzer does not become idle" : error;
        return false;
    }
    std::vector<double> milliseconds;
    for (int reset = 0; reset < options.resets; ++reset) {
        const std::size_t links = rig->Links();
        const double start = rig->Board().Seconds();
        rig->Send(FrontEnd::Reset);
        const double idle = rig->WaitForIdle();
        if (idle < 0.0 || !rig->WaitForLink(links)) {
            error = "no IDLE_STATE after a reset";
            return false;
        }
        milliseconds.push_back((idle - start - PrescribedResetSeconds) * 1000.0);
    }
    const auto [least, most] = std::minmax_element(milliseconds.begin(), milliseconds.end());
    figures.Add("reset to idle over its sleeps", Median(milliseconds), 60.0, "ms",
                Format("median of %d resets, %.2f to %.2f ms, beside the %.0f s that it sleeps by design",
                       options.resets, *least, *most, PrescribedResetSeconds));
    return true;
}

std::int64_t MedianMemory(const std::vector<ResidentMemory>& looks) {
    std::vector<double> all;
    all.reserve(looks.size());
    for (const ResidentMemory& look : looks) {
        all.push_back(static_cast<double>(look.All()));
    }
    return static_cast<std::int64_t>(Median(all));
}

// The least program with so many threads, on a board of the same kind.
bool IdleProgramMemory(const MeasureOptions& options, const std::string& configuration, int threads,
                       ResidentMemory& memory, std::string& error) {
    setenv("IDLE_THREADS", std::to_string(threads).c_str(), 1);
    const std::unique_ptr<Rig> rig = Rig::StartBare(Places(BENCH_IDLE_PROGRAM, options), configuration, error);
    if (!rig) {
        return false;
    }
    const auto settled = [&rig, threads] {
        return ActivityOf(rig->Process()).threads == threads && IsAsleep(rig->Process());
    };
    if (!rig->Board().WaitUntil(settled)) {
        error = "the program with idle threads does not start";
        return false;
    }
    memory = ResidentMemoryOf(rig->Process());
    return true;
}

bool MeasureMemory(const MeasureOptions& options, const std::string& configuration, const CyclesSeen& seen,
                   Figures& figures, std::string& error) {
    const auto usual = std::max_element(seen.memory.begin(), seen.memory.end(), [](const auto& one, const auto& other) {
        return one.second.size() < other.second.size();
    });
    ResidentMemory idle;
    if (usual == seen.memory.end() || !IdleProgramMemory(options, configuration, usual->first, idle, error)) {
        error = error.empty() ? "no look at the memory" : error;
        return false;
    }
    const ResidentMemory& last = usual->second.back();
    const std::int64_t product = MedianMemory(usual->second);
    figures.Add("resident memory in RUNNING_STATE", static_cast<double>(product) / static_cast<double>(idle.All()), 1.6,
                "times a program of idle threads",
                Format("%lld kB (%lld private, %lld shared; median of %zu looks with %d threads) to %lld kB (%lld "
                       "private, %lld shared) with as many",
                       static_cast<long long>(product), static_cast<long long>(last.privatePages),
                       static_cast<long long>(last.sharedPages), usual->second.size(), usual->first,
                       static_cast<long long>(idle.All()), static_cast<long long>(idle.privatePages),
                       static_cast<long long>(idle.sharedPages)));
    return true;
}

void AddCalm(const CyclesSeen& seen, Figures& figures) {
    Calm both = seen.sampling;
    both.seconds += seen.waiting.seconds;
    both.switches += seen.waiting.switches;
    both.processorSeconds += seen.waiting.processorSeconds;
    figures.Add("context switches between readings", both.SwitchesPerSecond(), 4.0, "a second",
                Format("%.2f a second in sampled steps (%.1f s looked at), %.2f in others (%.1f s)",
                       seen.sampling.SwitchesPerSecond(), seen.sampling.seconds, seen.waiting.SwitchesPerSecond(),
                       seen.waiting.seconds));
    figures.Add("processor between readings", both.ProcessorPercent(), 0.5, "% of a core",
                Format("%.4f %% in sampled steps, %.4f %% in others; the valve's busy wait of each opening is left out",
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

bool MeasureCycles(const MeasureOptions& options, const std::string& configuration, Figures& figures,
                   std::string& error) {
    const std::optional<CycleSettings> settings = ReadCycleSettings(configuration, error);
    CyclesSeen seen;
    {
        const std::unique_ptr<Rig> rig =
            settings ? Rig::Start(Places(BENCH_PROGRAM, options), configuration, error) : nullptr;
        if (!rig || !WatchCycles(*rig, *settings, options.cycles, seen, error)) {
            return false;
        }
    }
    AddCalm(seen, figures);
    AddLengths(seen, figures);
    return MeasureMemory(options, configuration, seen, figures, error);
}

bool MeasureLampToDisk(const MeasureOptions& options, const std::string& configuration, Figures& figures,
                       std::string& error) {
    const std::unique_ptr<Rig> rig = Rig::Start(Places(BENCH_PROGRAM, options), WithShortSteps(configuration), error);
    if (!rig) {
        return false;
    }
    std::vector<double> trips = RoundTrips(RoundTripsPerBlock);
    const std::vector<RecordTime> times = LampToDisk(*rig, options.records, error);
    if (times.empty()) {
        return false;
    }
    for (const double trip : RoundTrips(RoundTripsPerBlock)) {
        trips.push_back(trip);
    }
    std::vector<double> whole;
    std::vector<double> own;
    for (const RecordTime& time : times) {
        whole.push_back(time.seconds);
        own.push_back(time.seconds - time.deviceSeconds);
    }
    figures.Add(
        "lamp to disk", Median(own) / Median(trips), 20.0, "round trips of two threads",
        Format("median of %zu records %.0f us, beside the time inside the virtual device files; %.0f us with it; "
               "median of %zu round trips %.1f us",
               times.size(), Median(own) * 1e6, Median(whole) * 1e6, trips.size(), Median(trips) * 1e6));
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
    std::ifstream file(BENCH_CONFIGURATION);
    std::ostringstream text;
    text << file.rdbuf();
    // The bench says when to start, and no sound plays beside it.
    const std::string configuration = WithItem(text.str(), "AutoStartMeasurement", "false");
    if (!options.arm.empty() && !MeasureBinary(options, figures, error)) {
        return false;
    }
    Tell(Format("resets: %d, about %d s", options.resets, 12 * options.resets));
    if (!MeasureResets(options, configuration, figures, error)) {
        return false;
    }
    Tell(Format("records: %d, about %d s", options.records, 5 * options.records));
    if (!MeasureLampToDisk(options, configuration, figures, error)) {
        return false;
    }
    Tell(Format("cycles: %d, about %d s", options.cycles, 150 * options.cycles));
    return MeasureCycles(options, configuration, figures, error);
}

}  // namespace

int main(int count, char** arguments) {
    MeasureOptions options;
    options.bench = BENCH_FOLDER;
    std::string error;
    if (!ReadMeasureOptions({arguments + 1, arguments + count}, options, error)) {
        return Fail(error);
    }
    if (options.help) {
        std::fputs(MeasureHelp().c_str(), stdout);
        return 0;
    }
    Figures figures;
    if (!Measure(options, figures, error)) {
        return Fail(error);
    }
    std::printf("%s%s\n", figures.Table().c_str(), figures.LastLine().c_str());
    return figures.AllMet() ? 0 : 1;
}
