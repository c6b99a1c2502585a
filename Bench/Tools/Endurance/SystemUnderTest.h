// The analyzer in a long run: with both peers, restarted after a broken pipe, its footprint read. One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Bench/Common/BenchedAnalyzer.h"
#include "Bench/Tools/Endurance/Footprint.h"

namespace Bench {

using SettingList = std::vector<std::pair<std::string, std::string>>;  // value by name

// When a long run begins, by the analyzer's clock: 2026-12-31 23:00:00 UTC.
inline constexpr std::int64_t LongRunStart = 1798758000;
// How much of the analyzer's output is kept.
inline constexpr std::uintmax_t MaxOutputBytes = 64U << 20U;

class SystemUnderTest : public BenchedAnalyzer {
public:
    SystemUnderTest();

    // An empty folder with a fresh board and both peers. Returns false with the reason in `error`.
    bool Prepare(const Places& places, const BoardSetup& setup, const SettingList& settings, std::string& error);
    // Changes the settings that were read.
    bool Apply(const SettingList& settings, std::string& error);

    // A front end that closes the link while a frame is written ends the program by a broken pipe, as required: it is
    // then restarted. Returns false with the reason after any other end.
    bool StaysUp(std::string& reason);
    std::uint64_t BrokenPipes() const { return m_brokenPipes; }

    std::optional<Footprint> Measure() const { return ReadFootprint(Process()); }

    // Empties output and log once they are larger.
    void LimitOutput(std::uintmax_t max) const;

private:
    std::uint64_t m_brokenPipes = 0;
};

}  // namespace Bench
