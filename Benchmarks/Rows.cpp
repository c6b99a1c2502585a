// A new row: write its two measures in a file of its area, declare them in that file's header, and add one line here.
// A measure prepares what it needs, does the task for a millisecond or more (Stopwatch.h) and returns the cost of once.
#include "Benchmarks/Rows.h"

#include "Benchmarks/EditBenchmarks.h"
#include "Benchmarks/LoadBenchmarks.h"
#include "Benchmarks/LogBenchmarks.h"
#include "Benchmarks/QueueBenchmarks.h"
#include "Benchmarks/RecordBenchmarks.h"
#include "Benchmarks/RouterBenchmarks.h"
#include "Benchmarks/SettingsBenchmarks.h"

namespace {

using enum Goal;

// clang-format off
constexpr Row Table[] = {
    // task, peer, pairs, ours, the peer's, goal, target
    {"load and index, 40 KB", "pugixml", 41, LoadTime<OurReader, SMALL>, LoadTime<PugixmlReader, SMALL>, COST_AT_MOST, 0.9},
    {"load and index, 40 KB", "rapidxml", 21, LoadTime<OurReader, SMALL>, LoadTime<RapidxmlReader, SMALL>, NO_GOAL, 0},
    {"load and index, 40 KB", "tinyxml2", 21, LoadTime<OurReader, SMALL>, LoadTime<Tinyxml2Reader, SMALL>, NO_GOAL, 0},
    {"load and index, 40 KB", "libxml2", 21, LoadTime<OurReader, SMALL>, LoadTime<Libxml2Reader, SMALL>, NO_GOAL, 0},
    {"load and index, 40 KB", "expat, our index", 21, LoadTime<OurReader, SMALL>, LoadTime<ExpatReader, SMALL>, NO_GOAL, 0},
    {"load and index, 20 MB", "pugixml", 15, LoadTime<OurReader, LARGE>, LoadTime<PugixmlReader, LARGE>, COST_AT_MOST, 0.7},
    {"load and index, 20 MB", "rapidxml", 5, LoadTime<OurReader, LARGE>, LoadTime<RapidxmlReader, LARGE>, NO_GOAL, 0},
    {"load and index, 20 MB", "tinyxml2", 5, LoadTime<OurReader, LARGE>, LoadTime<Tinyxml2Reader, LARGE>, NO_GOAL, 0},
    {"load and index, 20 MB", "libxml2", 5, LoadTime<OurReader, LARGE>, LoadTime<Libxml2Reader, LARGE>, NO_GOAL, 0},
    {"load and index, 20 MB", "expat, our index", 5, LoadTime<OurReader, LARGE>, LoadTime<ExpatReader, LARGE>, NO_GOAL, 0},
    {"heap an element at the peak of that load", "expat, our index", 1, LoadMemory<OurReader, LARGE>, LoadMemory<ExpatReader, LARGE>, BYTES_AT_MOST, 190},
    {"heap an element at the peak of that load", "pugixml", 1, LoadMemory<OurReader, LARGE>, LoadMemory<PugixmlReader, LARGE>, BYTES_AT_MOST, 190},
    {"load settings, read every item", "rapidxml into maps", 41, SettingsOurs, SettingsRapidxml, COST_AT_MOST, 0.9},
    {"load, change an attribute, save, 40 KB", "pugixml", 41, EditOurs<SMALL>, EditPugixml<SMALL>, COST_AT_MOST, 0.5},
    {"load, change an attribute, save, 20 MB", "pugixml", 15, EditOurs<LARGE>, EditPugixml<LARGE>, COST_AT_MOST, 0.5},
    {"message through a queue, one way", "condition variable", 401, SendOneWayOurs, SendOneWayCondition, RATE_AT_LEAST, 0.7},
    {"round trip of two threads", "condition variable", 41, RoundTripOurs, RoundTripCondition, COST_AT_MOST, 1.0},
    {"round trip of two threads", "ZeroMQ inproc", 21, RoundTripOurs, RoundTripZeroMq, COST_AT_MOST, 1.0},
    {"broadcast to nine controllers", "CAF detached", 21, BroadcastOurs, BroadcastCaf, RATE_AT_LEAST, 1.2},
    {"the same, thousands at once", "CAF detached", 21, BroadcastManyOurs, BroadcastManyCaf, NO_GOAL, 0},
    {"log line that passes", "spdlog", 41, LogPassingOurs, LogPassingSpdlog, COST_AT_MOST, 1.0},
    {"the same, its readers asleep", "spdlog", 21, LogSingleOurs, LogSingleSpdlog, NO_GOAL, 0},
    {"the same, its readers asleep", "spdlog, flushed", 21, LogSingleOurs, LogSingleFlushedSpdlog, NO_GOAL, 0},
    {"log line that does not pass", "integer comparison", 41, LogDroppedOurs, CompareIntegers, COST_AT_MOST, 2.0},
    {"measurement record written, flushed", "fprintf, fflush", 41, WriteRecordOurs, WriteRecordPrintf, COST_AT_MOST, 1.1},
    {"the same, the card looked for", "fprintf, fflush", 41, LogRecordOurs, LogRecordPrintf, COST_AT_MOST, 1.1},
};
// clang-format on

}  // namespace

std::span<const Row> AllRows() { return Table; }
