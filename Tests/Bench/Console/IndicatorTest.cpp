#include "Bench/Console/Indicator.h"

#include <gtest/gtest.h>

#include "Bench/Console/Display.h"

namespace Bench {
namespace {

constexpr std::uint8_t Bit(IndicatorLed led) { return static_cast<std::uint8_t>(1U << static_cast<unsigned>(led)); }

constexpr std::uint8_t Normal = Bit(IndicatorLed::BlueAnalyzer) | Bit(IndicatorLed::BlueWater);
constexpr std::uint8_t Alert = Bit(IndicatorLed::BlueAnalyzer) | Bit(IndicatorLed::AmberWater);

TEST(Indicator, one_color_on_each_side_and_a_sound) {
    EXPECT_EQ(IndicatorLine({Alert, "alert.wav"}), "indicator analyzer blue water amber sound alert.wav");
    EXPECT_EQ(IndicatorLine({Bit(IndicatorLed::RedAnalyzer) | Bit(IndicatorLed::RedWater), "alarm.wav"}),
              "indicator analyzer red water red sound alarm.wav");
    EXPECT_EQ(IndicatorLine({Bit(IndicatorLed::AmberAnalyzer) | Bit(IndicatorLed::BlueWater), ""}),
              "indicator analyzer amber water blue sound none");
}

TEST(Indicator, sides_with_none_some_or_all_lit) {
    EXPECT_EQ(IndicatorLine({}), "indicator analyzer off water off sound none");
    EXPECT_EQ(IndicatorLine({0x3F, ""}), "indicator analyzer all water all sound none");
    EXPECT_EQ(IndicatorLine({0x2B, ""}), "indicator analyzer blue+amber water blue+red sound none");
}

TEST(Indicator, a_change_is_reported_once_and_when_steady) {
    IndicatorWatch watch;
    EXPECT_EQ(watch.Update({}), std::nullopt);
    EXPECT_EQ(watch.Update({Normal, ""}), std::nullopt);
    EXPECT_EQ(watch.Update({Normal, ""}), (IndicatorView{Normal, ""}));
    EXPECT_EQ(watch.Update({Normal, ""}), std::nullopt);
    EXPECT_EQ(watch.Update({0, ""}), std::nullopt);  // in passing
    EXPECT_EQ(watch.Update({Alert, ""}), std::nullopt);
    EXPECT_EQ(watch.Update({Alert, "alert.wav"}), std::nullopt);
    EXPECT_EQ(watch.Update({Alert, "alert.wav"}), (IndicatorView{Alert, "alert.wav"}));
    EXPECT_EQ(watch.Update({0, ""}), std::nullopt);
    EXPECT_EQ(watch.Update({Alert, "alert.wav"}), std::nullopt);
    EXPECT_EQ(watch.Update({Alert, "alert.wav"}), std::nullopt);
}

TEST(Indicator, dark_again_is_a_change) {
    IndicatorWatch watch;
    watch.Update({Normal, ""});
    EXPECT_TRUE(watch.Update({Normal, ""}).has_value());
    watch.Update({});
    EXPECT_EQ(watch.Update({}), IndicatorView{});
}

TEST(Indicator, colors_are_painted_on_a_terminal) {
    EXPECT_EQ(Painted("indicator analyzer blue water amber+red sound none"),
              "indicator analyzer \033[94mblue\033[0m water \033[33mamber\033[0m+\033[31mred\033[0m sound none");
}

}  // namespace
}  // namespace Bench
