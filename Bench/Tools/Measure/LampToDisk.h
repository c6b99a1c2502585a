// From the light to the card: how long after the last reading of a cycle its record is written and flushed. One thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Bench/Tools/Measure/Fixture.h"

namespace Bench {

// With every wait of a cycle shortened but those of its last step.
SettingsFile WithShortSteps(SettingsFile settings);

struct RecordTime {
    double seconds = 0.0;        // from the last reading to the record
    double deviceSeconds = 0.0;  // of them, those within the board, on the one processor
};

// The bytes of all records on the card. The board itself is left alone: whoever looks at it while a record is on its
// way holds it up.
std::uintmax_t RecordBytes(const Board& board);

struct RecordTimes {
    std::vector<RecordTime> records;
    std::vector<double> roundTrips;  // seconds each, of two threads, made in the same time, ten a second
};

// Sends the analyzer into RUNNING_STATE and gives those of so many cycles. No records, with a sentence in `error`,
// where they don't come.
RecordTimes LampToDisk(Fixture& fixture, int cycles, std::string& error);

}  // namespace Bench
