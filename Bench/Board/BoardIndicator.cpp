// The lines of the remote indicator, its cable, and the faults of both.
#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

struct IndicatorRow {
    IndicatorLed led;
    Line line;
    std::string_view name;
};

constexpr IndicatorRow Rows[IndicatorLeds] = {
    {IndicatorLed::BlueAnalyzer, {3, 17}, "blue-analyzer"},    //
    {IndicatorLed::AmberAnalyzer, {3, 16}, "amber-analyzer"},  //
    {IndicatorLed::RedAnalyzer, {3, 21}, "red-analyzer"},      //
    {IndicatorLed::BlueWater, {3, 18}, "blue-water"},          //
    {IndicatorLed::AmberWater, {3, 19}, "amber-water"},        //
    {IndicatorLed::RedWater, {3, 20}, "red-water"},
};

std::uint8_t BitOf(IndicatorLed led) { return static_cast<std::uint8_t>(1U << static_cast<unsigned>(led)); }

}  // namespace

std::uint8_t IndicatorLinesHigh(const BoardState& state) {
    std::uint8_t high = 0;
    for (const IndicatorRow& row : Rows) {
        high |= PinLevel(state, row.line) ? BitOf(row.led) : std::uint8_t{0};
    }
    return high;
}

void BreakIndicator(const BoardState& state, InstrumentSettings& settings) {
    std::size_t next = 0;
    while (const char* value = NextFaultValue(state, "indicator-led-open", next)) {
        for (const IndicatorRow& row : Rows) {
            settings.indicatorLedsOpen |= row.name == value ? BitOf(row.led) : std::uint8_t{0};
        }
    }
    next = 0;
    while (const char* value = NextFaultValue(state, "cable", next)) {
        settings.cableFeet = std::strtod(value, nullptr);
    }
}

bool IsIndicatorLed(std::string_view name) {
    return std::any_of(std::begin(Rows), std::end(Rows), [name](const auto& row) { return row.name == name; });
}

bool IsIndicatorLine(Line line) {
    return std::any_of(std::begin(Rows), std::end(Rows), [line](const auto& row) { return row.line == line; });
}

bool Board::IndicatorLit(IndicatorLed led) const {
    const BoardLock state(*m_state);
    return (IndicatorLinesHigh(*state) & ~EffectiveSettings(*state).indicatorLedsOpen & BitOf(led)) != 0;
}

}  // namespace Bench
