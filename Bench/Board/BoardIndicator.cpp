// The lines of the remote indicator, and what is broken at the end of its cable.
#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr int IndicatorBank = 3;

struct IndicatorRow {
    IndicatorLed led;
    int pin;
    std::string_view name;
};

constexpr IndicatorRow Rows[IndicatorLeds] = {
    {IndicatorLed::BlueAnalyzer, 17, "blue-analyzer"}, {IndicatorLed::AmberAnalyzer, 16, "amber-analyzer"},
    {IndicatorLed::RedAnalyzer, 21, "red-analyzer"},   {IndicatorLed::BlueWater, 18, "blue-water"},
    {IndicatorLed::AmberWater, 19, "amber-water"},     {IndicatorLed::RedWater, 20, "red-water"},
};

std::uint8_t BitOf(IndicatorLed led) { return static_cast<std::uint8_t>(1U << static_cast<unsigned>(led)); }

}  // namespace

std::uint8_t IndicatorLinesHigh(const BoardState& state) {
    std::uint8_t high = 0;
    for (const IndicatorRow& row : Rows) {
        high |= PinLevel(state, IndicatorBank, row.pin) ? BitOf(row.led) : std::uint8_t{0};
    }
    return high;
}

void BreakIndicator(const BoardState& state, InstrumentSettings& settings) {
    std::size_t next = 0;
    while (const char* value = NextFaultValue(state, FaultName::IndicatorLedOpen, next)) {
        for (const IndicatorRow& row : Rows) {
            settings.indicatorLedsOpen |= row.name == value ? BitOf(row.led) : std::uint8_t{0};
        }
    }
    next = 0;
    while (const char* value = NextFaultValue(state, FaultName::Cable, next)) {
        settings.cableFeet = std::strtod(value, nullptr);
    }
}

bool IsIndicatorLed(std::string_view name) {
    return std::any_of(std::begin(Rows), std::end(Rows), [name](const auto& row) { return row.name == name; });
}

bool IsIndicatorLine(int bank, int pin) {
    return bank == IndicatorBank &&
           std::any_of(std::begin(Rows), std::end(Rows), [pin](const auto& row) { return row.pin == pin; });
}

bool Board::IndicatorLit(IndicatorLed led) const {
    const BoardLock lock(*m_state);
    const std::uint8_t open = EffectiveSettings(*m_state).indicatorLedsOpen;
    return (IndicatorLinesHigh(*m_state) & ~open & BitOf(led)) != 0;
}

}  // namespace Bench
