#include "Drivers/ValvePWM.h"

#include <cerrno>
#include <ctime>

#include "Tests/Drivers/DriverTest.h"

namespace {

class Valve : public DriverTest {
protected:
    static void MakeReady(ValvePWM& valve) {
        EXPECT_TRUE(valve.Initialize());
        TakeTrace();
    }

    static Texts Opened(const char* duty) {
        return {"/sys/class/pwm/pwmchip0/pwm3/duty_cycle=0", "/sys/class/pwm/pwmchip0/pwm3/period=1000000",
                std::string("/sys/class/pwm/pwmchip0/pwm3/duty_cycle=") + duty,
                "/sys/class/pwm/pwmchip0/pwm3/enable=1"};
    }
};

}  // namespace

TEST_F(Valve, initialising_claims_the_channel_and_leaves_the_valve_as_it_is) {
    ValvePWM valve(3, 1000);
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_TRUE(valve.Initialize());
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/export=3"}));
}

TEST_F(Valve, initializing_again_claims_the_channel_again) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    EXPECT_EQ(PrintedBy([&valve] { EXPECT_TRUE(valve.Initialize()); }), Silence);
    EXPECT_TRUE(valve.ValveOn(100.0F));
}

TEST_F(Valve, before_it_is_initialised_the_valve_does_nothing_and_says_nothing) {
    ValvePWM valve(3, 1000);
    EXPECT_EQ(PrintedBy([&valve] {
                  EXPECT_FALSE(valve.ValveOn(100.0F));
                  EXPECT_FALSE(valve.ValveOff());
              }),
              Silence);
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Valve, without_switch_values_an_opened_valve_keeps_the_opening_duty) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    EXPECT_EQ(PrintedBy([&valve] { EXPECT_TRUE(valve.ValveOn(100.0F)); }), Silence);
    EXPECT_EQ(TakeTrace(), Opened("1000000"));
}

TEST_F(Valve, with_a_switch_delay_of_0_an_opened_valve_keeps_the_opening_duty) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    valve.SetSwitchValues(0, 40.0F);
    EXPECT_TRUE(valve.ValveOn(90.0F));
    EXPECT_EQ(TakeTrace(), Opened("900000"));
}

TEST_F(Valve, an_opened_valve_drops_to_the_hold_duty_after_the_switch_delay) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    valve.SetSwitchValues(200, 40.0F);
    const std::clock_t start = std::clock();
    EXPECT_TRUE(valve.ValveOn(100.0F));
    EXPECT_GE(std::clock() - start, 200 * (CLOCKS_PER_SEC / 1000));
    Texts expected = Opened("1000000");
    expected.emplace_back("/sys/class/pwm/pwmchip0/pwm3/enable=0");
    for (const std::string& line : Opened("400000")) {
        expected.push_back(line);
    }
    EXPECT_EQ(TakeTrace(), expected);
}

TEST_F(Valve, a_valve_that_does_not_open_is_reported) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    SetFault("pwm-missing");
    EXPECT_EQ(PrintedBy([&valve] { EXPECT_FALSE(valve.ValveOn(100.0F)); }),
              (Printed{"ValvePWM::ValveOn: valve did not successfully turn on",
                       "not locked yet\nunable to set pwm frequency"}));
    ClearFault("pwm-missing");
}

TEST_F(Valve, a_valve_that_does_not_drop_to_the_hold_duty_fails_without_a_text) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    valve.SetSwitchValues(10, 40.0F);
    FailCall("open", 9, EACCES);  // the first of the second setting
    EXPECT_EQ(PrintedBy([&valve] { EXPECT_FALSE(valve.ValveOn(100.0F)); }),
              OnError("not locked yet\nunable to set pwm frequency"));
    EXPECT_EQ(TakeTrace(), Opened("1000000"));
}

TEST_F(Valve, closing_disables_the_channel) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    valve.ValveOn(100.0F);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&valve] { EXPECT_TRUE(valve.ValveOff()); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/pwm3/enable=0"}));
}

TEST_F(Valve, closing_a_closed_valve_is_good) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    EXPECT_TRUE(valve.ValveOff());
    EXPECT_TRUE(valve.ValveOff());
}

TEST_F(Valve, a_valve_that_does_not_close_is_reported) {
    ValvePWM valve(3, 1000);
    MakeReady(valve);
    FailCall("open", 2, EACCES);
    EXPECT_EQ(PrintedBy([&valve] { EXPECT_FALSE(valve.ValveOff()); }),
              (Printed{"ValvePWM::ValveOff: error turning valve off", "unable to enable a pwm"}));
}

TEST_F(Valve, the_end_disables_and_releases_the_channel) {
    {
        ValvePWM valve(3, 1000);
        MakeReady(valve);
    }
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/pwm3/enable=0", "/sys/class/pwm/pwmchip0/unexport=3"}));
}
