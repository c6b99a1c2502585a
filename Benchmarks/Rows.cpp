// A new row: write its two measures in a file of its area, declare them in that file's header, and add one line here.
// A measure prepares what it needs, does the task for a millisecond or more (Stopwatch.h) and returns the cost of once.
#include "Benchmarks/Rows.h"

#include "Benchmarks/XmlBenchmarks.h"

namespace {

using enum Goal;

constexpr Row Table[] = {
    // task, peer, pairs, ours, the peer's, goal, target
    {"load and index, 40 KB", "pugixml", 41, LoadOurs<SMALL>, LoadPugixml<SMALL>, COST_AT_MOST, 0.9},
    {"load and index, 20 MB", "pugixml", 9, LoadOurs<LARGE>, LoadPugixml<LARGE>, COST_AT_MOST, 0.7},
};

}  // namespace

std::span<const Row> AllRows() { return Table; }
