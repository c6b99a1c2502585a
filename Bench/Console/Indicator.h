// The remote indicator as a person sees and hears it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Bench/Board/Board.h"

namespace Bench {

struct IndicatorView {
    std::uint8_t lit = 0;  // bit by IndicatorLed
    std::string sound;     // file name; empty without sound

    bool operator==(const IndicatorView&) const = default;
};

// "indicator analyzer blue water amber sound alert.wav". The colors of a side are joined by "+", three are "all", none
// is "off"; without sound the file is "none".
std::string IndicatorLine(const IndicatorView& view);

// Reports changes of the indicator. One thread.
class IndicatorWatch {
public:
    // The new state after a change. LEDs change one by one and the sound after them, so a state counts once two polls
    // in a row have seen it.
    std::optional<IndicatorView> Poll(const Board& board);
    // The same for a state that was polled.
    std::optional<IndicatorView> Update(const IndicatorView& view);

private:
    IndicatorView m_last;
    std::optional<IndicatorView> m_shown;
};

}  // namespace Bench
