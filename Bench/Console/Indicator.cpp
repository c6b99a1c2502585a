#include "Bench/Console/Indicator.h"

namespace Bench {

namespace {

constexpr const char* Colors[] = {"blue", "amber", "red"};
constexpr unsigned Sides = 3;  // LEDs of a side: the analyzer's come first, in the order of the colors
constexpr std::uint8_t AllOfASide = 7;

std::string ColorsOf(unsigned leds) {
    if (leds == 0) {
        return "off";
    }
    if (leds == AllOfASide) {
        return "all";
    }
    std::string text;
    for (unsigned i = 0; i < Sides; ++i) {
        if ((leds >> i & 1U) != 0) {
            text += (text.empty() ? "" : "+") + std::string(Colors[i]);
        }
    }
    return text;
}

}  // namespace

std::string IndicatorLine(const IndicatorView& view) {
    return "indicator analyzer " + ColorsOf(view.lit & AllOfASide) + " water " + ColorsOf(view.lit >> Sides) +
           " sound " + (view.sound.empty() ? "none" : view.sound);
}

std::optional<IndicatorView> IndicatorWatch::Poll(const Board& board) {
    IndicatorView view;
    for (unsigned led = 0; led < IndicatorLeds; ++led) {
        if (board.IndicatorLit(static_cast<IndicatorLed>(led))) {
            view.lit = static_cast<std::uint8_t>(view.lit | 1U << led);
        }
    }
    const std::string loop = board.LoopingClip();
    view.sound = loop.empty() ? board.PlayingClip() : loop;
    return Update(view);
}

std::optional<IndicatorView> IndicatorWatch::Update(const IndicatorView& view) {
    const bool isSteady = view == m_last;
    m_last = view;
    if (!isSteady || view == m_shown.value_or(IndicatorView{})) {
        return std::nullopt;
    }
    m_shown = view;
    return view;
}

}  // namespace Bench
