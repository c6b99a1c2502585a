// The remote indicator as a person stands before it: what of it is lit, and what it plays.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Bench/Board/Board.h"

namespace Bench {

struct IndicatorView {
    std::uint8_t lit = 0;  // bit by IndicatorLed
    std::string sound;     // file name; empty in silence

    bool operator==(const IndicatorView&) const = default;
};

// "indicator analyzer blue water amber sound alert.wav". The colours of a side are joined by "+", three are "all", none
// is "off"; silence is "none".
std::string IndicatorLine(const IndicatorView& view);

// Looks at the indicator again and again. Used by one thread.
class IndicatorWatch {
public:
    // What the indicator has changed to. A colour is changed line by line and its sound after that, so something counts
    // once it has been met at two looks, one after the other.
    std::optional<IndicatorView> Look(const Board& board);
    // The same for what a look has given.
    std::optional<IndicatorView> Take(const IndicatorView& view);

private:
    IndicatorView m_last;
    std::optional<IndicatorView> m_told;
};

}  // namespace Bench
