// Every result sent to the front end, until its record is found in a day file on the card. One thread.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "Bench/Common/FileTail.h"
#include "Bench/Peers/FrontEnd.h"

namespace Bench {

// A record's seconds in the form of the front end's link, UTC: "@Tuesday March 05,02:14:07 pm".
std::string FrontEndDate(std::int64_t seconds);

class ResultLedger {
public:
    // A result without a record, and the board's second at which it came.
    struct Missing {
        std::string date;
        double seconds = 0.0;
    };

    ResultLedger(const std::string& card, const std::string& fileName) : m_files(card, fileName) {}

    // Takes the frames received since the last call, at that second of the board, and then the new lines of the day
    // files.
    void Update(const std::vector<FrontEndFrame>& frames, double seconds);

    std::uint64_t Reported() const { return m_reported; }
    std::uint64_t Recorded() const { return m_recorded; }  // of those reported
    const std::deque<Missing>& Pending() const { return m_pending; }
    double LastChlorine() const { return m_chlorine; }  // of the last record, mg/l
    void DropOldest() { m_pending.pop_front(); }
    // Why a line of a day file is not a record; empty if all are.
    const std::string& Trouble() const { return m_trouble; }

private:
    void ReadLine(const DayFileTail::Line& line);

    DayFileTail m_files;
    std::deque<Missing> m_pending;
    std::map<std::string, int> m_records;  // not reported, or not yet
    std::size_t m_secondsColumn = 0;
    std::size_t m_chlorineColumn = 0;
    double m_chlorine = 0.0;
    std::uint64_t m_reported = 0;
    std::uint64_t m_recorded = 0;
    std::string m_trouble;
};

}  // namespace Bench
