#include "Drivers/StepperDriverBase.h"

#include <pthread.h>

#include <atomic>
#include <csignal>
#include <ctime>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "Tests/Drivers/DriverTest.h"

namespace {

constexpr PinAddress Enable{1, 15};
constexpr PinAddress OtherEnable{1, 16};
constexpr PinAddress Direction{0, 3};

constexpr const char* ChipOn = "/sys/class/gpio/pioB15/value=0";
constexpr const char* ChipOff = "/sys/class/gpio/pioB15/value=1";
constexpr const char* OtherChipOn = "/sys/class/gpio/pioB16/value=0";
constexpr const char* OtherChipOff = "/sys/class/gpio/pioB16/value=1";
constexpr const char* PwmOn = "/sys/class/pwm/pwmchip0/pwm2/enable=1";
constexpr const char* PwmOff = "/sys/class/pwm/pwmchip0/pwm2/enable=0";

constexpr std::uint8_t Channel = 2;

class Stepper : public DriverTest {
protected:
    using DriverTest::DriverTest;

    static std::unique_ptr<StepperDriverBase> Motor(PinAddress enable = Enable) {
        auto motor = std::make_unique<StepperDriverBase>(Channel);
        motor->SetUpEnablePin(enable);
        TakeTrace();
        return motor;
    }

    // Ends motors that got into each other's way.
    static void End(std::unique_ptr<StepperDriverBase>& first, std::unique_ptr<StepperDriverBase>& second) {
        PrintedBy([&] {
            first.reset();
            second.reset();
        });
    }

    // Simulated seconds between the last two lines of these texts.
    static double SecondsBetween(const std::string& from, const std::string& to) {
        double start = 0.0;
        double end = 0.0;
        for (const auto& entry : Board().TraceWithTimes()) {
            start = entry.text == from ? entry.seconds : start;
            end = entry.text == to ? entry.seconds : end;
        }
        return end - start;
    }
};

class StepperInRealTime : public Stepper {
protected:
    StepperInRealTime() : Stepper(Pace::Real) {}
};

void TakeSignal(int /*signal*/) {}

}  // namespace

TEST_F(Stepper, a_channel_above_3_is_invalid) {
    std::unique_ptr<StepperDriverBase> motor;
    EXPECT_EQ(PrintedBy([&motor] { motor = std::make_unique<StepperDriverBase>(4); }),
              OnOutput("StepperDriverBase: Invalid PWM channel"));
    EXPECT_FALSE(motor->IsValid());
}

TEST_F(Stepper, an_invalid_motor_does_nothing_and_says_nothing) {
    std::unique_ptr<StepperDriverBase> motor;
    PrintedBy([&motor] { motor = std::make_unique<StepperDriverBase>(4); });
    EXPECT_EQ(PrintedBy([&motor] {
                  EXPECT_FALSE(motor->SetUpPins(Enable, Direction));
                  EXPECT_FALSE(motor->SetUpEnablePin(Enable));
                  EXPECT_FALSE(motor->Start(50.0F, 400.0F));
                  EXPECT_FALSE(motor->RunForTime(50.0F, 400.0F, 1, false));
                  EXPECT_FALSE(motor->Stop());
                  motor.reset();
              }),
              Silence);
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Stepper, the_enable_line_disables_the_chip_before_the_channel_is_claimed) {
    StepperDriverBase motor(Channel);
    EXPECT_TRUE(motor.IsValid());
    EXPECT_TRUE(motor.SetUpEnablePin(Enable));
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/export=47", "/sys/class/gpio/pioB15/direction=out",
                                  "/sys/class/gpio/pioB15/edge=none", ChipOff, "/sys/class/pwm/pwmchip0/export=2"}));
}

TEST_F(Stepper, the_direction_line_is_an_output_that_is_low_and_comes_first) {
    StepperDriverBase motor(Channel);
    EXPECT_TRUE(motor.SetUpPins(Enable, Direction));
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/export=3", "/sys/class/gpio/pioA3/direction=out",
                                  "/sys/class/gpio/pioA3/edge=none", "/sys/class/gpio/pioA3/value=0",
                                  "/sys/class/gpio/export=47", "/sys/class/gpio/pioB15/direction=out",
                                  "/sys/class/gpio/pioB15/edge=none", ChipOff, "/sys/class/pwm/pwmchip0/export=2"}));
}

TEST_F(Stepper, a_direction_line_in_use_makes_the_motor_invalid) {
    const GpioPin used(Direction);
    TakeTrace();
    auto motor = std::make_unique<StepperDriverBase>(Channel);
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->SetUpPins(Enable, Direction)); }),
              (Printed{"StepperDriverBase: Setting up direction GPIO pin failed", "already used\n"}));
    EXPECT_FALSE(motor->IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Stepper, an_enable_line_in_use_makes_the_motor_invalid) {
    const GpioPin used(Enable);
    TakeTrace();
    auto motor = std::make_unique<StepperDriverBase>(Channel);
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->SetUpEnablePin(Enable)); }),
              (Printed{"StepperDriverBase: Setting up enable GPIO pin failed", "already used\n"}));
    EXPECT_FALSE(motor->IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Stepper, an_enable_line_that_cannot_be_raised_makes_the_motor_invalid) {
    SetFault("write-refused=value");
    StepperDriverBase motor(Channel);
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor.SetUpEnablePin(Enable)); }),
              (Printed{"StepperDriverBase: Setting up enable GPIO pin failed", "unable to set the gpio value"}));
}

TEST_F(Stepper, the_end_releases_the_channel_and_then_the_lines) {
    auto motor = std::make_unique<StepperDriverBase>(Channel);
    motor->SetUpPins(Enable, Direction);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&motor] { motor.reset(); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{PwmOff, "/sys/class/pwm/pwmchip0/unexport=2", "/sys/class/gpio/unexport=47",
                                  "/sys/class/gpio/unexport=3"}));
}

TEST_F(Stepper, starting_enables_the_chip_and_then_the_pulses) {
    const auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_TRUE(motor->Start(50.0F, 640.0F)); }), Silence);
    EXPECT_EQ(TakeTrace(),
              (Texts{ChipOn, "/sys/class/pwm/pwmchip0/pwm2/duty_cycle=0", "/sys/class/pwm/pwmchip0/pwm2/period=1562500",
                     "/sys/class/pwm/pwmchip0/pwm2/duty_cycle=781250", PwmOn}));
    motor->Stop();
}

TEST_F(Stepper, stopping_disables_the_pulses_and_then_the_chip) {
    const auto motor = Motor();
    motor->Start(50.0F, 640.0F);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_TRUE(motor->Stop()); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{PwmOff, ChipOff}));
}

TEST_F(Stepper, duty_and_frequency_at_their_limits_start) {
    const auto motor = Motor();
    for (const auto& [duty, frequency] : {std::pair{100.0F, 1.0F}, std::pair{1e-6F, 1e8F}}) {
        EXPECT_TRUE(motor->Start(duty, frequency));
        EXPECT_TRUE(motor->Stop());
    }
}

TEST_F(Stepper, duty_or_frequency_outside_their_limits_do_not_start) {
    const auto motor = Motor();
    for (const auto& [duty, frequency] : {std::pair{0.0F, 400.0F}, std::pair{-1.0F, 400.0F}, std::pair{100.01F, 400.0F},
                                          std::pair{50.0F, 0.99F}, std::pair{50.0F, 1.1e8F}}) {
        EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(motor->Start(duty, frequency)); }),
                  OnOutput("Invalid PWM frequency or duty cycle in StepperDriver::Start"));
    }
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Stepper, a_chip_that_cannot_be_enabled_is_stopped_and_frees_the_channel) {
    const auto motor = Motor();
    SetFault("write-refused=value");
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->Start(50.0F, 400.0F)); }),
              (Printed{"Stepper Driver: PWM enable or chip enable failed"
                       "Stepper Driver: PWM disable or chip disable failed",
                       "unable to set the gpio valueunable to set the gpio value"}));
    EXPECT_EQ(TakeTrace(),
              (Texts{"/sys/class/gpio/pioB15/value=0 !EIO", PwmOff, "/sys/class/gpio/pioB15/value=1 !EIO"}));
    ClearFault("write-refused");
    EXPECT_TRUE(motor->Start(50.0F, 400.0F));
    EXPECT_TRUE(motor->Stop());
}

TEST_F(Stepper, pulses_that_cannot_be_set_leave_the_chip_disabled) {
    const auto motor = Motor();
    SetFault("pwm-missing");
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->Start(50.0F, 400.0F)); }),
              (Printed{"Stepper Driver: PWM enable or chip enable failed"
                       "not locked yet\n"
                       "Stepper Driver: PWM disable or chip disable failed",
                       "not locked yet\nunable to set pwm frequency"}));
    EXPECT_EQ(TakeTrace(), (Texts{ChipOn, ChipOff}));
    ClearFault("pwm-missing");
}

TEST_F(Stepper, a_motor_without_its_lines_does_not_start) {
    StepperDriverBase motor(Channel);
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor.Start(50.0F, 400.0F)); }),
              OnOutput("Stepper Driver: PWM enable or chip enable failed"
                       "Stepper Driver: PWM disable or chip disable failed"));
}

TEST_F(Stepper, stopping_a_motor_that_was_not_started_disables_it_and_is_no_failure) {
    const auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_TRUE(motor->Stop()); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{PwmOff, ChipOff}));
}

TEST_F(Stepper, a_thread_that_starts_its_running_motor_again_fails_at_the_lock) {
    const auto motor = Motor();
    motor->Start(50.0F, 400.0F);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->Start(50.0F, 800.0F)); }),
              OnOutput("Stepper Driver: PWM mutex lock failed"));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_TRUE(motor->Stop());
}

TEST_F(Stepper, a_motor_may_be_stopped_by_another_thread) {
    const auto motor = Motor();
    motor->Start(50.0F, 400.0F);
    std::thread([&motor] { EXPECT_TRUE(motor->Stop()); }).join();
    EXPECT_TRUE(motor->Start(50.0F, 400.0F));
    EXPECT_TRUE(motor->Stop());
}

TEST_F(Stepper, running_for_no_time_is_good_and_does_nothing) {
    const auto motor = Motor();
    EXPECT_TRUE(motor->RunForTime(0.0F, 0.0F, 0, false));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Stepper, running_for_a_time_starts_waits_and_stops) {
    const auto motor = Motor();
    EXPECT_TRUE(motor->RunForTime(50.0F, 400.0F, 1250, false));
    EXPECT_THAT(SecondsBetween(PwmOn, PwmOff), IsWaitOf(1.25));
    EXPECT_EQ(TakeTrace(),
              (Texts{ChipOn, "/sys/class/pwm/pwmchip0/pwm2/duty_cycle=0", "/sys/class/pwm/pwmchip0/pwm2/period=2500000",
                     "/sys/class/pwm/pwmchip0/pwm2/duty_cycle=1250000", PwmOn, PwmOff, ChipOff}));
}

TEST_F(Stepper, running_with_a_busy_wait_spends_processor_time) {
    const auto motor = Motor();
    const std::clock_t start = std::clock();
    EXPECT_TRUE(motor->RunForTime(50.0F, 400.0F, 200, true));
    EXPECT_GE(std::clock() - start, 200 * (CLOCKS_PER_SEC / 1000));
}

TEST_F(StepperInRealTime, signals_do_not_shorten_the_run) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = TakeSignal;
    sigaction(SIGUSR1, &action, &before);
    const auto motor = Motor();
    std::atomic<bool> ended = false;
    std::thread runner([&] {
        EXPECT_TRUE(motor->RunForTime(50.0F, 400.0F, 2000, false));
        ended = true;
    });
    EXPECT_TRUE(Board().WaitForTrace(PwmOn));
    while (!ended) {
        pthread_kill(runner.native_handle(), SIGUSR1);
        Board().WaitUntil([&ended] { return ended.load(); }, 0.01);
    }
    runner.join();
    EXPECT_GE(SecondsBetween(PwmOn, PwmOff), 2.0);
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(Stepper, a_run_that_does_not_start_fails_at_once) {
    const auto motor = Motor();
    EXPECT_EQ(PrintedBy([&motor] { EXPECT_FALSE(motor->RunForTime(50.0F, 0.5F, 60000, false)); }),
              OnOutput("Invalid PWM frequency or duty cycle in StepperDriver::Start"));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Stepper, two_motors_on_a_channel_run_one_after_the_other) {
    auto first = Motor();
    std::unique_ptr<StepperDriverBase> second;
    EXPECT_EQ(PrintedBy([&second] { second = Motor(OtherEnable); }), OnError("already used\n"));
    const auto runMany = [](StepperDriverBase& motor) {
        for (int i = 0; i < 5; ++i) {
            EXPECT_TRUE(motor.RunForTime(50.0F, 400.0F, 100, false));
        }
    };
    std::thread firstRunner(runMany, std::ref(*first));
    std::thread secondRunner(runMany, std::ref(*second));
    firstRunner.join();
    secondRunner.join();
    int running = 0;
    int starts = 0;
    for (const std::string& line : TakeTrace()) {
        const bool starting = line == ChipOn || line == OtherChipOn;
        starts += starting ? 1 : 0;
        running += starting ? 1 : 0;
        running -= line == ChipOff || line == OtherChipOff ? 1 : 0;
        EXPECT_LE(running, 1);
    }
    EXPECT_EQ(starts, 10);
    End(first, second);
}

TEST_F(Stepper, a_motor_does_not_stop_the_hold_of_another_on_its_channel) {
    auto first = Motor();
    std::unique_ptr<StepperDriverBase> second;
    PrintedBy([&second] { second = Motor(OtherEnable); });
    first->Start(50.0F, 400.0F);
    EXPECT_EQ(PrintedBy([&second] { EXPECT_FALSE(second->Stop()); }),
              OnOutput("Stepper Driver: PWM mutex unlock failed"));
    EXPECT_EQ(PrintedBy([&first] { EXPECT_TRUE(first->Stop()); }), Silence);
    End(first, second);
}

TEST_F(Stepper, a_motor_that_ends_running_gives_the_channel_back) {
    Motor()->Start(50.0F, 400.0F);
    const auto next = Motor();
    EXPECT_TRUE(next->Start(50.0F, 400.0F));
    EXPECT_TRUE(next->Stop());
}
