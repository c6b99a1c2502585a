// Every result that the front end was told, until it has been found in a day file on the card. One thread.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "Bench/Common/FileTail.h"
#include "Bench/Peers/FrontEnd.h"

namespace Bench {

// "@Tuesday March 05,02:14:07 pm", as the front end is told it, of a record's seconds; UTC.
std::string FrontEndDate(std::int64_t seconds);

class ResultLedger {
public:
    // A result without a record, at the board's second when it was seen.
    struct Missing {
        std::string date;
        double seconds = 0.0;
    };

    ResultLedger(const std::string& card, const std::string& fileName) : m_files(card, fileName) {}

    // Frames that have come since the last call, seen at that second of the board, and then the day files.
    void Look(const std::vector<FrontEndFrame>& frames, double seconds);

    std::uint64_t Reported() const { return m_reported; }
    std::uint64_t Recorded() const { return m_recorded; }  // of those reported
    const std::deque<Missing>& Pending() const { return m_pending; }
    void Forgive() { m_pending.pop_front(); }  // the oldest
    // Why a line of a day file was no record, or stood in another day's file; empty where all was well.
    const std::string& Trouble() const { return m_trouble; }

private:
    void TakeLine(const DayFileTail::Line& line);

    DayFileTail m_files;
    std::deque<Missing> m_pending;
    std::map<std::string, int> m_records;  // not reported, or not yet
    std::size_t m_secondsColumn = 0;
    std::uint64_t m_reported = 0;
    std::uint64_t m_recorded = 0;
    std::string m_trouble;
};

}  // namespace Bench
