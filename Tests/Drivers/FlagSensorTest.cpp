#include "Drivers/FlagSensor.h"

#include <thread>

#include "Tests/Drivers/DriverTest.h"

namespace {

class Flag : public DriverTest {
protected:
    static constexpr int Bank = 1;
    static constexpr int Pin = 18;

    Flag() { Board().DrivePin(Bank, Pin, false); }

    // Changes the flag as soon as a wait for it has begun.
    static std::thread Turn(bool level) {
        return std::thread([level, polls = Board().CallCount("poll")] {
            EXPECT_TRUE(Board().WaitUntil([polls] { return Board().CallCount("poll") > polls; }));
            Board().DrivePin(Bank, Pin, level);
        });
    }
};

}  // namespace

TEST_F(Flag, the_flag_is_an_input_with_both_edges) {
    const FlagSensor flag;
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/export=50", "/sys/class/gpio/pioB18/direction=in",
                                  "/sys/class/gpio/pioB18/edge=both"}));
}

TEST_F(Flag, the_end_releases_the_line) {
    {
        const FlagSensor flag;
        TakeTrace();
    }
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/unexport=50"}));
}

TEST_F(Flag, the_flag_is_either_high_or_low) {
    const FlagSensor flag;
    EXPECT_TRUE(flag.IsLow());
    EXPECT_FALSE(flag.IsHigh());
    Board().DrivePin(Bank, Pin, true);
    EXPECT_TRUE(flag.IsHigh());
    EXPECT_FALSE(flag.IsLow());
}

TEST_F(Flag, a_flag_without_its_line_is_neither_high_nor_low) {
    const FlagSensor flag;
    SetFault("gpio-missing");
    EXPECT_EQ(PrintedBy([&flag] {
                  EXPECT_FALSE(flag.IsHigh());
                  EXPECT_FALSE(flag.IsLow());
              }),
              OnError("not locked yet\nnot locked yet\n"));
    ClearFault("gpio-missing");
}

TEST_F(Flag, waiting_for_high_sees_the_rising_edge) {
    const FlagSensor flag;
    std::thread turn = Turn(true);
    EXPECT_TRUE(flag.WaitForHigh(60000));
    turn.join();
}

TEST_F(Flag, waiting_for_low_sees_the_falling_edge) {
    Board().DrivePin(Bank, Pin, true);
    const FlagSensor flag;
    std::thread turn = Turn(false);
    EXPECT_TRUE(flag.WaitForLow(60000));
    turn.join();
}

TEST_F(Flag, the_other_edge_ends_the_wait_with_false) {
    const FlagSensor flag;
    std::thread rise = Turn(true);
    EXPECT_FALSE(flag.WaitForLow(60000));
    rise.join();
    std::thread fall = Turn(false);
    EXPECT_FALSE(flag.WaitForHigh(60000));
    fall.join();
}

TEST_F(Flag, a_wait_that_times_out_sees_neither) {
    const FlagSensor flag;
    EXPECT_FALSE(flag.WaitForLow(1000));
    EXPECT_FALSE(flag.WaitForHigh(1000));
}

TEST_F(Flag, no_wait_is_shorter_than_a_second) {
    const FlagSensor flag;
    for (const std::uint32_t milliseconds : {0U, 166U, 999U}) {
        EXPECT_THAT(SecondsOf([&] { EXPECT_FALSE(flag.WaitForHigh(milliseconds)); }), IsWaitOf(1.0));
    }
    EXPECT_THAT(SecondsOf([&] { EXPECT_FALSE(flag.WaitForLow(0)); }), IsWaitOf(1.0));
}

TEST(FlagWaitTime, is_held_within_a_second_and_a_minute) {
    EXPECT_EQ(FlagSensor::WaitTime(0), 1000);
    EXPECT_EQ(FlagSensor::WaitTime(999), 1000);
    EXPECT_EQ(FlagSensor::WaitTime(1001), 1001);
    EXPECT_EQ(FlagSensor::WaitTime(59999), 59999);
    EXPECT_EQ(FlagSensor::WaitTime(60001), 60000);
    EXPECT_EQ(FlagSensor::WaitTime(0xFFFFFFFF), 60000);
}

TEST_F(Flag, no_wait_is_longer_than_a_minute) {
    const FlagSensor flag;
    // A poll of -1 would never end.
    EXPECT_THAT(SecondsOf([&] { EXPECT_FALSE(flag.WaitForHigh(0xFFFFFFFF)); }), IsWaitOf(60.0));
    EXPECT_THAT(SecondsOf([&] { EXPECT_FALSE(flag.WaitForLow(86400000)); }), IsWaitOf(60.0));
}
