// Runs the rows that --benchmark_filter names (all without it) on one core, and ends with the table. Exit status: 0 if
// every row met its target, 1 if one missed it, 2 if there was nothing to run.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sched.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Benchmarks/Report.h"
#include "Benchmarks/Rows.h"

namespace {

double RatioOf(const Row& row, double ours, double peers) {
    return row.goal == Goal::RATE_AT_LEAST ? peers / ours : ours / peers;
}

// A task must not pay for the heap that the task before has left.
double MeasureAlone(Measure measure) {
    malloc_trim(0);
    return measure();
}

// One iteration is one pair. The first of the pair alternates.
void RunPairs(benchmark::State& state, const Row& row, std::vector<Outcome>& outcomes) {
    row.ours();
    row.peers();
    std::vector<double> ours;
    std::vector<double> peers;
    std::vector<double> ratios;
    for ([[maybe_unused]] auto pair : state) {
        const bool isPeerFirst = ours.size() % 2 == 1;
        const double first = isPeerFirst ? MeasureAlone(row.peers) : MeasureAlone(row.ours);
        const double second = isPeerFirst ? MeasureAlone(row.ours) : MeasureAlone(row.peers);
        ours.push_back(isPeerFirst ? second : first);
        peers.push_back(isPeerFirst ? first : second);
        ratios.push_back(RatioOf(row, ours.back(), peers.back()));
        state.SetIterationTime(ours.back());
    }
    outcomes.push_back({&row, Median(ours), Median(peers), Median(ratios)});
    state.counters["ratio"] = outcomes.back().ratio;
}

// Both sides share the machine's other load on that core.
void StayOnOneCore() {
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
        return;
    }
    std::size_t core = CPU_SETSIZE - 1;
    while (core > 0 && !CPU_ISSET(core, &allowed)) {
        --core;
    }
    CPU_ZERO(&allowed);
    CPU_SET(core, &allowed);
    sched_setaffinity(0, sizeof allowed, &allowed);
}

}  // namespace

int main(int argc, char** argv) {
    StayOnOneCore();
    std::vector<Outcome> outcomes;
    for (const Row& row : AllRows()) {
        const std::string name = std::string(row.task) + " / " + row.peer;
        benchmark::RegisterBenchmark(name.c_str(),
                                     [&row, &outcomes](benchmark::State& state) { RunPairs(state, row, outcomes); })
            ->Iterations(row.pairs)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv) || benchmark::RunSpecifiedBenchmarks() == 0) {
        return 2;
    }
    std::printf("\n");
    return PrintTable(outcomes) ? 0 : 1;
}
