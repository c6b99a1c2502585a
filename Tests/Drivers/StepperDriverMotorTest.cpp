#include "Drivers/StepperDriverMotor.h"

#include <initializer_list>
#include <memory>
#include <thread>

#include "Tests/Drivers/DriverTest.h"

namespace {

constexpr PinAddress Enable{0, 2};
constexpr PinAddress Direction{0, 3};
constexpr PinAddress Limit0{0, 4};
constexpr PinAddress Limit1{0, 5};
constexpr PinAddress Limit2{0, 6};

constexpr const char* ChipOn = "/sys/class/gpio/pioA2/value=0";
constexpr const char* ChipOff = "/sys/class/gpio/pioA2/value=1";
constexpr const char* PwmOn = "/sys/class/pwm/pwmchip0/pwm1/enable=1";
constexpr const char* PwmOff = "/sys/class/pwm/pwmchip0/pwm1/enable=0";

constexpr const char* MoveFailed = "StepperDriverMotor::MoveAngle failed!";

class StepperMotor : public DriverTest {
protected:
    static std::unique_ptr<StepperDriverMotor> Motor() {
        auto motor = std::make_unique<StepperDriverMotor>(1);
        motor->SetUpPins(Enable, Direction);
        motor->SetUpCurrentLimit({Limit0, Limit1, Limit2}, 7);
        TakeTrace();
        return motor;
    }

    static Texts Limits(const char* bit0, const char* bit1, const char* bit2) {
        return {std::string("/sys/class/gpio/pioA4/value=") + bit0, std::string("/sys/class/gpio/pioA5/value=") + bit1,
                std::string("/sys/class/gpio/pioA6/value=") + bit2};
    }

    static Texts Start(const char* period, const char* duty) {
        return {ChipOn, "/sys/class/pwm/pwmchip0/pwm1/duty_cycle=0",
                std::string("/sys/class/pwm/pwmchip0/pwm1/period=") + period,
                std::string("/sys/class/pwm/pwmchip0/pwm1/duty_cycle=") + duty, PwmOn};
    }

    static Texts Joined(std::initializer_list<Texts> parts) {
        Texts all;
        for (const Texts& part : parts) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }

    static Printed MoveFails(StepperDriverMotor& motor, float angle, float duty, std::uint32_t milliseconds) {
        return PrintedBy([&] { EXPECT_FALSE(motor.MoveAngle(angle, duty, milliseconds, false)); });
    }
};

}  // namespace

TEST_F(StepperMotor, the_current_limit_lines_are_outputs_and_take_the_first_limit) {
    StepperDriverMotor motor(1);
    EXPECT_TRUE(motor.SetUpCurrentLimit({Limit0, Limit1, Limit2}, 7));
    EXPECT_EQ(
        TakeTrace(),
        Joined({{"/sys/class/gpio/export=4", "/sys/class/gpio/pioA4/direction=out", "/sys/class/gpio/pioA4/edge=none",
                 "/sys/class/gpio/export=5", "/sys/class/gpio/pioA5/direction=out", "/sys/class/gpio/pioA5/edge=none",
                 "/sys/class/gpio/export=6", "/sys/class/gpio/pioA6/direction=out", "/sys/class/gpio/pioA6/edge=none"},
                Limits("1", "1", "1")}));
}

TEST_F(StepperMotor, a_current_limit_line_in_use_makes_the_motor_invalid) {
    const GpioPin used(Limit1);
    auto motor = std::make_unique<StepperDriverMotor>(1);
    EXPECT_EQ(PrintedBy([&motor] {
                  EXPECT_FALSE(motor->SetUpCurrentLimit({Limit0, Limit1, Limit2}, 7));
              }),
              (Printed{"Setting current limit GPIO pin(s) to outputs failed", "already used\n"}));
    EXPECT_FALSE(motor->IsValid());
    PrintedBy([&motor] { motor.reset(); });
    EXPECT_FALSE(Board().Pin(0, 6).claimed);
}

TEST_F(StepperMotor, a_first_limit_that_cannot_be_set_makes_the_motor_invalid) {
    StepperDriverMotor motor(1);
    SetFault("write-refused=pioA5/value");
    EXPECT_EQ(
        PrintedBy([&motor] {
            EXPECT_FALSE(motor.SetUpCurrentLimit({Limit0, Limit1, Limit2}, 7));
        }),
        (Printed{"Reagent Stepper Motor: Setting current limit pin values failed", "unable to set the gpio value"}));
    EXPECT_FALSE(motor.IsValid());
}

TEST_F(StepperMotor, each_limit_sets_its_bits_and_any_above_7_none) {
    const struct {
        std::uint32_t limit;
        Texts lines;
    } rows[] = {
        {0, Limits("0", "0", "0")},  {1, Limits("1", "0", "0")},          {2, Limits("0", "1", "0")},
        {3, Limits("1", "1", "0")},  {4, Limits("0", "0", "1")},          {5, Limits("1", "0", "1")},
        {6, Limits("0", "1", "1")},  {7, Limits("1", "1", "1")},          {8, Limits("0", "0", "0")},
        {15, Limits("0", "0", "0")}, {0xFFFFFFFF, Limits("0", "0", "0")},
    };
    const auto motor = Motor();
    for (const auto& row : rows) {
        EXPECT_TRUE(motor->SetCurrentLimit(row.limit));
        EXPECT_EQ(TakeTrace(), row.lines) << row.limit;
    }
}

TEST_F(StepperMotor, a_limit_line_that_fails_does_not_keep_the_others) {
    const auto motor = Motor();
    SetFault("write-refused=pioA4/value");
    EXPECT_EQ(
        PrintedBy([&motor] { EXPECT_FALSE(motor->SetCurrentLimit(0)); }),
        (Printed{"Reagent Stepper Motor: Setting current limit pin values failed", "unable to set the gpio value"}));
    EXPECT_EQ(TakeTrace(), Limits("0 !EIO", "0", "0"));
}

TEST_F(StepperMotor, an_invalid_motor_sets_no_limit_and_says_nothing) {
    std::unique_ptr<StepperDriverMotor> motor;
    PrintedBy([&motor] { motor = std::make_unique<StepperDriverMotor>(4); });
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->SetCurrentLimit(7)); }), Silence);
}

TEST_F(StepperMotor, an_invalid_motor_neither_starts_nor_moves_nor_brakes) {
    std::unique_ptr<StepperDriverMotor> motor;
    PrintedBy([&motor] { motor = std::make_unique<StepperDriverMotor>(4); });
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->StartMotor(50.0F, 400.0F, 7)); }),
              OnOutput("StepperDriverMotor: Start operation failed"));
    EXPECT_EQ(MoveFails(*motor, 90.0F, 50.0F, 1000), OnOutput(MoveFailed));
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->Brake()); }),
              OnOutput("StepperDriverMotor: Brake operation failed"));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(StepperMotor, a_quarter_of_a_turn_in_a_second_is_400_pulses) {
    const auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 1000, false)); }), Silence);
    EXPECT_EQ(
        TakeTrace(),
        Joined(
            {Limits("1", "1", "1"), Start("2500000", "1250000"), {PwmOff, ChipOff}, Limits("0", "0", "0"), {ChipOn}}));
}

TEST_F(StepperMotor, the_frequency_of_a_move_follows_angle_and_time) {
    const struct {
        float angle;
        std::uint32_t milliseconds;
        const char* period;
        const char* duty;
    } rows[] = {
        {360.0F, 1000, "625000", "312500"},
        {5.0F, 13, "585000", "292500"},
        {720.0F, 500, "156250", "78125"},
    };
    const auto motor = Motor();
    for (const auto& row : rows) {
        EXPECT_TRUE(motor->MoveAngle(row.angle, 50.0F, row.milliseconds, false));
        const Texts trace = TakeTrace();
        const Texts start(trace.begin() + 3, trace.begin() + 8);
        EXPECT_EQ(start, Start(row.period, row.duty)) << row.angle;
    }
}

TEST_F(StepperMotor, a_move_takes_its_time) {
    const auto motor = Motor();
    EXPECT_THAT(SecondsOf([&] { EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 1500, false)); }), IsWaitOf(1.5));
}

TEST_F(StepperMotor, a_move_out_of_range_fails_before_it_touches_anything) {
    const auto motor = Motor();
    EXPECT_EQ(MoveFails(*motor, 0.0F, 50.0F, 1000), OnOutput(MoveFailed));
    EXPECT_EQ(MoveFails(*motor, -1.0F, 50.0F, 1000), OnOutput(MoveFailed));
    EXPECT_EQ(MoveFails(*motor, 90.0F, 0.0F, 1000), OnOutput(MoveFailed));
    EXPECT_EQ(MoveFails(*motor, 90.0F, 100.01F, 1000), OnOutput(MoveFailed));
    EXPECT_EQ(MoveFails(*motor, 90.0F, 50.0F, 0), OnOutput(MoveFailed));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 10, false));
}

TEST_F(StepperMotor, a_duty_of_0_fails_in_the_start_with_the_text_of_the_start) {
    const auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->StartMotor(0.0F, 400.0F, 7)); }),
              OnOutput("Invalid PWM frequency or duty cycle in StepperDriver::Start"
                       "StepperDriverMotor: Start operation failed"));
    EXPECT_TRUE(motor->Brake());
}

TEST_F(StepperMotor, a_failed_move_keeps_the_motor_until_it_is_braked) {
    const auto motor = Motor();
    EXPECT_EQ(MoveFails(*motor, 0.01F, 50.0F, 1000),
              OnOutput("Invalid PWM frequency or duty cycle in StepperDriver::Start"
                       "StepperDriverMotor::MoveAngle failed!"));
    EXPECT_EQ(TakeTrace(), Limits("1", "1", "1"));
    std::thread later([&motor] { EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 10, false)); });
    ExpectNoTrace();
    EXPECT_TRUE(motor->Brake());
    later.join();
    const Texts trace = TakeTrace();
    EXPECT_EQ(Texts(trace.begin(), trace.begin() + 4), Joined({Limits("0", "0", "0"), {ChipOn}}));
}

TEST_F(StepperMotor, a_failed_limit_keeps_the_motor_too) {
    const auto motor = Motor();
    SetFault("write-refused=pioA6/value");
    EXPECT_EQ(MoveFails(*motor, 90.0F, 50.0F, 1000),
              (Printed{"Reagent Stepper Motor: Setting current limit pin values failed"
                       "StepperDriverMotor::MoveAngle failed!",
                       "unable to set the gpio value"}));
    EXPECT_EQ(TakeTrace(), Limits("1", "1", "1 !EIO"));
    ClearFault("write-refused");
    EXPECT_TRUE(motor->Brake());
    EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 10, false));
}

TEST_F(StepperMotor, a_motor_may_end_while_it_is_kept) {
    auto motor = Motor();
    std::thread([&motor] { MoveFails(*motor, 0.01F, 50.0F, 1000); }).join();
    EXPECT_EQ(PrintedBy([&motor] { motor.reset(); }), Silence);
    EXPECT_TRUE(Motor()->MoveAngle(90.0F, 50.0F, 10, false));
}

TEST_F(StepperMotor, a_started_motor_runs_until_it_is_stopped_and_braked) {
    const auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_TRUE(motor->StartMotor(50.0F, 1600.0F, 5)); }), Silence);
    EXPECT_EQ(TakeTrace(), Joined({Limits("1", "0", "1"), Start("625000", "312500")}));
    EXPECT_EQ(PrintedBy([&motor] {
                  EXPECT_TRUE(motor->Stop());
                  EXPECT_TRUE(motor->Brake());
              }),
              Silence);
    EXPECT_EQ(TakeTrace(), Joined({{PwmOff, ChipOff}, Limits("0", "0", "0"), {ChipOn}}));
}

TEST_F(StepperMotor, a_started_motor_makes_the_next_caller_wait_until_it_is_braked) {
    const auto motor = Motor();
    motor->StartMotor(50.0F, 1600.0F, 7);
    motor->Stop();
    TakeTrace();
    std::thread next([&motor] { EXPECT_TRUE(motor->StartMotor(50.0F, 400.0F, 3)); });
    ExpectNoTrace();
    EXPECT_TRUE(motor->Brake());
    next.join();
    const Texts trace = TakeTrace();
    EXPECT_EQ(trace, Joined({Limits("0", "0", "0"), {ChipOn}, Limits("1", "1", "0"), Start("2500000", "1250000")}));
    EXPECT_TRUE(motor->Stop());
    EXPECT_TRUE(motor->Brake());
}

TEST_F(StepperMotor, a_start_that_fails_keeps_the_motor_until_it_is_braked) {
    const auto motor = Motor();
    SetFault("write-refused=pioA2/value");
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->StartMotor(50.0F, 400.0F, 7)); }),
              (Printed{"Stepper Driver: PWM enable or chip enable failed"
                       "Stepper Driver: PWM disable or chip disable failed"
                       "StepperDriverMotor: Start operation failed",
                       "unable to set the gpio valueunable to set the gpio value"}));
    ClearFault("write-refused");
    TakeTrace();
    std::thread next([&motor] { EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 10, false)); });
    ExpectNoTrace();
    EXPECT_TRUE(motor->Brake());
    next.join();
}

TEST_F(StepperMotor, braking_takes_the_current_away_and_leaves_the_chip_enabled) {
    const auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_TRUE(motor->Brake()); }), Silence);
    EXPECT_EQ(TakeTrace(), Joined({Limits("0", "0", "0"), {ChipOn}}));
}

TEST_F(StepperMotor, braking_again_is_good) {
    const auto motor = Motor();
    motor->StartMotor(50.0F, 1600.0F, 7);
    motor->Stop();
    EXPECT_TRUE(motor->Brake());
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_TRUE(motor->Brake()); }), Silence);
    EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 10, false));
}

TEST_F(StepperMotor, a_brake_that_fails_is_reported_and_releases_the_motor) {
    const auto motor = Motor();
    motor->StartMotor(50.0F, 1600.0F, 7);
    motor->Stop();
    SetFault("write-refused=pioA2/value");
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->Brake()); }),
              (Printed{"StepperDriverMotor: Brake operation failed", "unable to set the gpio value"}));
    ClearFault("write-refused");
    EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 10, false));
}

TEST_F(StepperMotor, moves_from_two_threads_take_turns) {
    const auto motor = Motor();
    const auto moveMany = [&motor] {
        for (int i = 0; i < 5; ++i) {
            EXPECT_TRUE(motor->MoveAngle(90.0F, 50.0F, 20, false));
        }
    };
    std::thread first(moveMany);
    std::thread second(moveMany);
    first.join();
    second.join();
    const Texts trace = TakeTrace();
    const Texts one =
        Joined({Limits("1", "1", "1"), Start("50000", "25000"), {PwmOff, ChipOff}, Limits("0", "0", "0"), {ChipOn}});
    ASSERT_EQ(trace.size(), 10 * one.size());
    for (std::size_t at = 0; at < trace.size(); at += one.size()) {
        const auto from = trace.begin() + static_cast<std::ptrdiff_t>(at);
        EXPECT_EQ(Texts(from, from + static_cast<std::ptrdiff_t>(one.size())), one);
    }
}

TEST_F(StepperMotor, the_end_releases_limits_then_channel_then_lines) {
    auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { motor.reset(); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/unexport=4", "/sys/class/gpio/unexport=5",
                                  "/sys/class/gpio/unexport=6", PwmOff, "/sys/class/pwm/pwmchip0/unexport=1",
                                  "/sys/class/gpio/unexport=2", "/sys/class/gpio/unexport=3"}));
}
