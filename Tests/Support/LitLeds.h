// The lit LEDs of the remote indicator, one letter per LED: "B", "A", "R" for blue, amber and red of the analyzer, then
// "b", "a", "r" of the water.
#pragma once

#include <string>
#include <utility>

#include "Bench/Board/Board.h"

inline std::string LitLeds(const Bench::Board& board) {
    using Bench::IndicatorLed;
    std::string lit;
    for (const auto& [led, letter] : {std::pair(IndicatorLed::BlueAnalyzer, 'B'),
                                      {IndicatorLed::AmberAnalyzer, 'A'},
                                      {IndicatorLed::RedAnalyzer, 'R'},
                                      {IndicatorLed::BlueWater, 'b'},
                                      {IndicatorLed::AmberWater, 'a'},
                                      {IndicatorLed::RedWater, 'r'}}) {
        lit += board.IndicatorLit(led) ? std::string(1, letter) : "";
    }
    return lit;
}
