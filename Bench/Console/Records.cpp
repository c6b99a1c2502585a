#include "Bench/Console/Records.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "Bench/Common/Text.h"

namespace Bench {

namespace {

constexpr const char* ColumnNames[] = {"Absorbance",      "Chlorine",     "Dark Count",
                                       "Reference Count", "Sample Count", "Measurement Index"};

constexpr std::string_view ExecutingText = "Executing ";
constexpr std::string_view StepText = " Step";
constexpr std::string_view EndText = "End of Measurement Cycle: LED DutyCycle = ";
constexpr std::string_view CycleTexts[] = {ExecutingText, EndText,
                                           "LED Adjustment Results: ", "Waiting for Next Measurement Initiation",
                                           "Aborted Measurement Cycle"};

bool ReadReal(const std::string& text, double& value) {
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0' && std::isfinite(value);
}

}  // namespace

bool MeasurementReader::ReadColumns(const std::string& line) {
    const std::vector<std::string> names = SplitAtCommas(line);
    std::size_t found = 0;
    for (std::size_t column = 0; column < ColumnCount; ++column) {
        for (std::size_t field = 0; field < names.size(); ++field) {
            if (names[field] == ColumnNames[column]) {
                m_fields[column] = field;
                ++found;
                break;
            }
        }
    }
    m_known = found == ColumnCount;
    return m_known;
}

MeasurementReader::Kind MeasurementReader::Read(const std::string& line, MeasurementRecord& record) {
    if (line.starts_with("Text Date / Time,")) {
        return ReadColumns(line) ? Kind::Columns : Kind::Unreadable;
    }
    if (!m_known) {
        return Kind::Unreadable;
    }
    const std::vector<std::string> fields = SplitAtCommas(line);
    std::array<double, ColumnCount> values{};
    for (std::size_t column = 0; column < ColumnCount; ++column) {
        if (m_fields[column] >= fields.size() || !ReadReal(fields[m_fields[column]], values[column])) {
            return Kind::Unreadable;
        }
    }
    if (values[Index] < 0.0 || values[Index] > 4294967295.0) {
        return Kind::Unreadable;
    }
    record.index = static_cast<std::uint64_t>(values[Index]);
    record.chlorine = values[Chlorine];
    record.absorbance = values[Absorbance];
    record.dark = values[Dark];
    record.reference = values[Reference];
    record.reacted = values[Reacted];
    return Kind::Record;
}

std::optional<StatusLine> ReadStatusLine(const std::string& line) {
    const std::size_t separator = line.find(" :: ");
    if (separator == std::string::npos) {
        return std::nullopt;
    }
    // The zone's name, a blank, the date, a blank, the time with its fraction.
    const std::size_t zoneEnd = line.find(' ');
    const std::size_t dateEnd = line.find(' ', zoneEnd + 1);
    constexpr std::size_t DateLength = 10;
    constexpr std::size_t TimeLength = 8;
    if (dateEnd >= separator || dateEnd - zoneEnd - 1 != DateLength || separator - dateEnd - 1 < TimeLength) {
        return std::nullopt;
    }
    return StatusLine{line.substr(zoneEnd + 1, DateLength), line.substr(dateEnd + 1, TimeLength),
                      line.substr(separator + 4)};
}

bool IsCycleStatus(const std::string& text) {
    for (const std::string_view start : CycleTexts) {
        if (text.starts_with(start)) {
            return true;
        }
    }
    return false;
}

std::optional<std::string> StepOfStatus(const std::string& text) {
    const std::string_view view = text;
    const std::size_t around = ExecutingText.size() + StepText.size();
    if (!view.starts_with(ExecutingText) || view.size() < around ||
        view.substr(view.size() - StepText.size()) != StepText) {
        return std::nullopt;
    }
    return text.substr(ExecutingText.size(), text.size() - around);
}

std::optional<double> DutyOfStatus(const std::string& text) {
    if (!text.starts_with(EndText)) {
        return std::nullopt;
    }
    const char* start = text.c_str() + EndText.size();
    char* end = nullptr;
    const double duty = std::strtod(start, &end);
    // The log has one percent sign, the status text two.
    if (end == start || *end != '%') {
        return std::nullopt;
    }
    return duty;
}

std::string ResultLine(const MeasurementRecord& record, double sample, double duty) {
    return Format(
        "result %llu chlorine %.4f sample %.4f absorbance %.5f dark %.0f reference %.0f reacted %.0f duty %.2f",
        static_cast<unsigned long long>(record.index), record.chlorine, sample, record.absorbance, record.dark,
        record.reference, record.reacted, duty);
}

}  // namespace Bench
