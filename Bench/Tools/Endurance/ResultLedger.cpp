#include "Bench/Tools/Endurance/ResultLedger.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "Bench/Common/Text.h"

namespace Bench {

std::string FrontEndDate(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm date{};
    gmtime_r(&time, &date);
    char text[64];
    std::strftime(text, sizeof text, "@%A %B %d,%I:%M:%S ", &date);
    return std::string(text) + (date.tm_hour < 12 ? "am" : "pm");
}

void ResultLedger::Update(const std::vector<FrontEndFrame>& frames, double seconds) {
    for (const FrontEndFrame& frame : frames) {
        if (frame.Find("ChlorineValue")) {
            std::string date = frame.Find("DateValue").value_or("");
            date.erase(std::min(date.find('\n'), date.size()));
            ++m_reported;
            m_pending.push_back({date, seconds});
        }
    }
    for (const DayFileTail::Line& line : m_files.Read()) {
        ReadLine(line);
    }
    const auto isFound = [this](const Missing& missing) {
        const auto record = m_records.find(missing.date);
        if (record == m_records.end()) {
            return false;
        }
        if (--record->second == 0) {
            m_records.erase(record);
        }
        ++m_recorded;
        return true;
    };
    m_pending.erase(std::remove_if(m_pending.begin(), m_pending.end(), isFound), m_pending.end());
}

void ResultLedger::ReadLine(const DayFileTail::Line& line) {
    const std::vector<std::string> fields = SplitAtCommas(line.text);
    const auto column = std::find(fields.begin(), fields.end(), "Seconds");
    if (column != fields.end()) {
        m_secondsColumn = static_cast<std::size_t>(column - fields.begin());
        m_chlorineColumn =
            static_cast<std::size_t>(std::find(fields.begin(), fields.end(), "Chlorine") - fields.begin());
        return;
    }
    if (m_secondsColumn == 0 || m_secondsColumn >= fields.size()) {
        m_trouble = "no record in " + line.file + ": " + line.text;
        return;
    }
    const std::int64_t seconds = std::strtoll(fields[m_secondsColumn].c_str(), nullptr, 10);
    m_chlorine = m_chlorineColumn < fields.size() ? std::strtod(fields[m_chlorineColumn].c_str(), nullptr) : -1.0;
    ++m_records[FrontEndDate(seconds)];
}

}  // namespace Bench
