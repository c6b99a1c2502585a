// Runs courses in exact time and judges each. One thread.
#pragma once

#include <optional>
#include <string>

#include "Bench/Tools/Endurance/Course.h"

namespace Bench {

struct Finding {
    std::string trouble;
    std::string waits;  // what each thread waited for, in one line
};

class Explorer {
public:
    explicit Explorer(const Places& places) : m_places(places) {}

    // One run, with its events in `traceFile` if that is not empty. Nothing if all was well.
    std::optional<Finding> Run(const Course& course, const std::string& traceFile = "");
    double Seconds() const { return m_seconds; }   // simulated, of all runs
    std::uint64_t Hash() const { return m_hash; }  // of the last run's events

    // The shortest course found in so many runs that gives the same kind of finding.
    Course Shorten(Course course, const Finding& finding, int runs);

private:
    Places m_places;
    double m_seconds = 0.0;
    std::uint64_t m_hash = 0;
};

}  // namespace Bench
