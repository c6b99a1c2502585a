// Reads the analyzer's output: lines of its measurement file and status texts of its log.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Bench {

struct MeasurementRecord {
    std::uint64_t index = 0;
    double chlorine = 0.0;
    double absorbance = 0.0;
    double dark = 0.0;
    double reference = 0.0;
    double reacted = 0.0;
};

// Reads one measurement file, line by line, without line ends.
class MeasurementReader {
public:
    enum class Kind { Columns, Record, Unreadable };
    // The line of column names gives the positions of the fields in all later records. A record is unreadable without
    // such a line before it, or if a field is missing or not a number.
    Kind Read(const std::string& line, MeasurementRecord& record);

private:
    enum Column { Absorbance, Chlorine, Dark, Reference, Reacted, Index, ColumnCount };

    bool ReadColumns(const std::string& line);

    std::size_t m_fields[ColumnCount] = {};
    bool m_known = false;
};

// Date, time and text of a line of the system log: "UTC 2026-12-31 23:57:05.000000001 :: TEXT".
struct StatusLine {
    std::string date;  // "2026-12-31"
    std::string time;  // "23:57:05"
    std::string text;
};
std::optional<StatusLine> ReadStatusLine(const std::string& line);

// Returns true if the text reports the progress of a cycle.
bool IsCycleStatus(const std::string& text);

// The display name in "Executing NAME Step"; nothing for other texts.
std::optional<std::string> StepOfStatus(const std::string& text);

// The duty in percent of "End of Measurement Cycle: LED DutyCycle = ..."; nothing for other texts.
std::optional<double> DutyOfStatus(const std::string& text);

// The result line of ./run.
std::string ResultLine(const MeasurementRecord& record, double sample, double duty);

}  // namespace Bench
