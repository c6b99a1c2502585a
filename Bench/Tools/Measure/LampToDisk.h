// The time from the last reading of a cycle until its record is written and flushed. One thread.
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
    double deviceSeconds = 0.0;  // of them in the board
};

// The bytes of all records on the card. It does not lock the board, which would delay a record on its way.
std::uintmax_t RecordBytes(const Board& board);

struct RecordTimes {
    std::vector<RecordTime> records;
    std::vector<double> roundTrips;  // seconds each, ten per second meanwhile
};

// Sets the analyzer to running and measures so many cycles. No records, with the reason in `error`, if they don't come.
RecordTimes LampToDisk(Fixture& fixture, int cycles, std::string& error);

}  // namespace Bench
