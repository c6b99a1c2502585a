#include "Drivers/PwmChannel.h"
#include "Drivers/StepperDriverMotor.h"
#include "Drivers/ValvePWM.h"
#include "System/MeasurementEngine/ReAgentDeliveryProcessing.h"
#include "System/MeasurementEngine/SampleDeliveryProcessing.h"
#include "System/MeasurementEngine/StirBarProcessing.h"
#include "Tests/System/MeasurementEngine/MeasurementFixture.h"

namespace {

const std::string Pwm = "/sys/class/pwm/pwmchip0/pwm";
const std::string Gpio = "/sys/class/gpio/";
const std::string InvalidTurnTime =
    "ReAgentDeliveryProcessing::PerformReAgentProcessing Unable to perform ReAgend Processing due to invalid Motor "
    "Turn "
    "Time";
const std::string NoHome = "ReAgentDeliveryProcessing::FindHomePosition Unable to find Home position";

// One worker, one step.
template <typename Worker>
class WorkerFixture : public MeasurementFixture {
protected:
    void Work() {
        worker.SetStep(&step);
        ASSERT_TRUE(worker.Start());
        worker.Join();
        EXPECT_EQ(worker.GetThreadId(), pthread_t{0});
    }

    void ExpectNoThread() {
        worker.SetStep(&step);
        EXPECT_FALSE(worker.Start());
        EXPECT_EQ(worker.GetThreadId(), pthread_t{0});
    }

    Worker worker;
    StepParameters step;
};

class SampleDelivery : public WorkerFixture<SampleDeliveryProcessing> {
protected:
    SampleDelivery() {
        valve.Initialize();
        worker.SetValve(&valve);
        Board().ClearTrace();
    }

    ValvePWM valve{3, 1000};
};

class StirBar : public WorkerFixture<StirBarProcessing> {
protected:
    StirBar() {
        motor.SetUpEnablePin({1, 15});
        worker.SetMotor(&motor);
        step.stirringOn = true;
        step.duration = 2000;
        Board().ClearTrace();
    }

    StepperDriverBase motor{2};
};

class Pump : public WorkerFixture<ReAgentDeliveryProcessing> {
protected:
    Pump() {
        motor.SetUpPins({0, 2}, {0, 3});
        motor.SetUpCurrentLimit({{{0, 4}, {0, 5}, {0, 6}}}, 7);
        worker.SetMotor(&motor);
        Board().ClearTrace();
    }

    void Turn(float angle, std::uint32_t speed, std::uint32_t duration) {
        step.motorAngle = angle;
        step.motorSpeed = speed;
        step.duration = duration;
        Board().ClearTrace();
        Work();
    }

    Texts Periods() const { return TraceOf("pwm1/period="); }

    StepperDriverMotor motor{1};
};

}  // namespace

TEST_F(SampleDelivery, is_named_after_its_class) { EXPECT_EQ(worker.GetThreadName(), "SampleDeliveryProcessing"); }

TEST_F(SampleDelivery, opens_with_full_duty_and_drops_to_hold) {
    valve.SetSwitchValues(100, 40.0F);
    step.sampleValveOn = true;
    Work();
    EXPECT_EQ(Board().Trace(), (Texts{Pwm + "3/duty_cycle=0", Pwm + "3/period=1000000", Pwm + "3/duty_cycle=1000000",
                                      Pwm + "3/enable=1", Pwm + "3/enable=0", Pwm + "3/duty_cycle=0",
                                      Pwm + "3/period=1000000", Pwm + "3/duty_cycle=400000", Pwm + "3/enable=1"}));
    EXPECT_TRUE(Board().Pwm(3).enabled);
}

TEST_F(SampleDelivery, closes_if_the_step_does_not_ask_for_the_valve) {
    Work();
    EXPECT_EQ(Board().Trace(), Texts{Pwm + "3/enable=0"});
}

TEST_F(SampleDelivery, without_a_valve_no_thread_runs) {
    worker.SetValve(nullptr);
    ExpectNoThread();
}

TEST_F(SampleDelivery, forgets_its_step_at_the_end_of_the_thread) {
    Work();
    EXPECT_FALSE(worker.Start());
}

TEST_F(StirBar, is_named_after_its_class) { EXPECT_EQ(worker.GetThreadName(), "StirBarProcessing"); }

TEST_F(StirBar, runs_for_the_duration_at_640_hertz) {
    Work();
    EXPECT_EQ(Board().Trace(),
              (Texts{Gpio + "pioB15/value=0", Pwm + "2/duty_cycle=0", Pwm + "2/period=1562500",
                     Pwm + "2/duty_cycle=781250", Pwm + "2/enable=1", Pwm + "2/enable=0", Gpio + "pioB15/value=1"}));
    EXPECT_THAT(Between(Pwm + "2/enable=1", Pwm + "2/enable=0"), IsWaitOf(2.0));
}

TEST_F(StirBar, stays_at_rest_if_the_step_does_not_ask_for_it) {
    step.stirringOn = false;
    ExpectNoThread();
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(StirBar, without_a_motor_no_thread_runs) {
    worker.SetMotor(nullptr);
    ExpectNoThread();
}

TEST_F(StirBar, keeps_its_step_at_the_end_of_the_thread) {
    Work();
    EXPECT_TRUE(worker.Start());
    worker.Join();
}

TEST(PumpTurn, to_a_smaller_angle_goes_on_past_360) {
    EXPECT_EQ(PumpTurn(270.0, 90.0), 180.0);
    EXPECT_EQ(PumpTurn(300.0, 90.0), 150.0);
    EXPECT_EQ(PumpTurn(200.0, 190.0), 350.0);
}

TEST(PumpTurn, forward_is_the_difference) { EXPECT_EQ(PumpTurn(30.0, 330.0), 300.0); }

TEST(PumpTurn, to_the_same_angle_is_none) { EXPECT_EQ(PumpTurn(90.0, 90.0), 0.0); }

TEST(FlagTimeOut, is_the_time_for_390_degrees_while_high_and_60_while_low) {
    EXPECT_EQ(FlagHighTimeOut(360.0), 1083U);
    EXPECT_EQ(FlagLowTimeOut(360.0), 166U);
    EXPECT_EQ(FlagHighTimeOut(6.0), 65000U);
    EXPECT_EQ(FlagLowTimeOut(6.0), 10000U);
}

TEST(PumpTurnTime, is_cut_to_the_duration) {
    EXPECT_EQ(PumpTurnTime(120.0F, 60, 1000), 1000U);
    EXPECT_EQ(PumpTurnTime(120.0F, 60, 2000), 2000U);
    EXPECT_EQ(PumpTurnTime(120.0F, 60, 90000), 2000U);
}

TEST(PumpTurnTime, an_angle_below_the_speed_takes_less_than_a_second) {
    EXPECT_EQ(PumpTurnTime(90.0F, 120, 5000), 750U);
    EXPECT_EQ(PumpTurnTime(1.0F, 3, 5000), 333U);
}

TEST(PumpTurnTime, an_angle_below_one_degree_takes_none) {
    EXPECT_EQ(PumpTurnTime(0.5F, 60, 5000), 0U);
    EXPECT_EQ(PumpTurnTime(0.0F, 60, 5000), 0U);
    EXPECT_EQ(PumpTurnTime(-10.0F, 60, 5000), 0U);
}

TEST(PumpTurnTime, is_computed_in_single_precision) {
    // 360 / 7 * 1000 is 51428.571 exactly and 51428.57 in single precision; 16777217 has no single precision of its
    // own.
    EXPECT_EQ(PumpTurnTime(360.0F, 7, 100000), 51428U);
    EXPECT_EQ(PumpTurnTime(1e9F, 1, 16777217), 16777216U);
}

TEST(PumpTurnTime, settings_out_of_range_end_at_the_bounds) {
    EXPECT_EQ(PumpTurnTime(1e30F, 1, 0xFFFFFFFF), 2147483648U);
    EXPECT_EQ(PumpTurnTime(-1e30F, 1, 0xFFFFFFFF), 0U);
    EXPECT_EQ(PumpTurnTime(1e30F, 0, 1000), 0U);
}

TEST_F(Pump, is_named_after_its_class) { EXPECT_EQ(worker.GetThreadName(), "ReAgentDeliveryProcessing"); }

TEST_F(Pump, without_a_speed_no_thread_runs_whatever_the_angle) {
    step.motorAngle = 90.0F;
    step.duration = 1000;
    ExpectNoThread();
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Pump, without_a_motor_no_thread_runs) {
    worker.SetMotor(nullptr);
    step.motorSpeed = 60;
    ExpectNoThread();
}

TEST_F(Pump, a_turn_is_traced_from_current_to_brake) {
    Turn(90.0F, 90, 5000);
    const Texts full{Gpio + "pioA4/value=1", Gpio + "pioA5/value=1", Gpio + "pioA6/value=1"};
    const Texts turn{Gpio + "pioA2/value=0",       Pwm + "1/duty_cycle=0", Pwm + "1/period=2500000",
                     Pwm + "1/duty_cycle=1250000", Pwm + "1/enable=1",     Pwm + "1/enable=0",
                     Gpio + "pioA2/value=1"};
    const Texts brake{Gpio + "pioA4/value=0", Gpio + "pioA5/value=0", Gpio + "pioA6/value=0", Gpio + "pioA2/value=0"};
    Texts expected = full;
    expected.insert(expected.end(), turn.begin(), turn.end());
    expected.insert(expected.end(), brake.begin(), brake.end());
    EXPECT_EQ(Board().Trace(), expected);
    EXPECT_THAT(Between(Pwm + "1/enable=1", Pwm + "1/enable=0"), IsWaitOf(1.0));
}

TEST_F(Pump, a_smaller_angle_is_reached_forward_in_the_time_of_the_angle_itself) {
    Turn(280.0F, 280, 5000);
    EXPECT_EQ(Periods(), Texts{Pwm + "1/period=803571"});  // 280 degrees in a second
    Turn(90.0F, 90, 5000);
    EXPECT_EQ(Periods(), Texts{Pwm + "1/period=1323529"});  // 170 degrees in a second
}

TEST_F(Pump, an_angle_below_one_degree_is_reported_and_not_turned) {
    Turn(0.5F, 60, 1000);
    EXPECT_EQ(LogLines(), Texts{InvalidTurnTime});
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Pump, the_angle_that_it_has_is_refused_by_the_motor_and_the_step_goes_on) {
    Turn(90.0F, 90, 5000);
    testing::internal::CaptureStdout();
    Turn(90.0F, 90, 5000);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "StepperDriverMotor::MoveAngle failed!");
    EXPECT_EQ(Board().Trace(), Texts{});
    EXPECT_EQ(LogLines(), Texts{});
    Turn(180.0F, 180, 5000);
    EXPECT_EQ(Periods(), Texts{Pwm + "1/period=2500000"});
}

TEST_F(Pump, a_homing_step_without_a_turn_time_does_not_home) {
    step.findStartPosition = true;
    Turn(0.0F, 180, 5000);
    EXPECT_EQ(LogLines(), Texts{InvalidTurnTime});
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Pump, homing_steps_at_1600_hertz_and_stops_5_degrees_past_the_edge) {
    EXPECT_TRUE(worker.FindHomePosition(360.0));
    // The way past the edge: 5 degrees in 13 ms.
    EXPECT_EQ(Periods(), (Texts{Pwm + "1/period=625000", Pwm + "1/period=585000"}));
    EXPECT_EQ(LogLines(), Texts{});
    EXPECT_FALSE(Board().Pin(1, 18).claimed);
}

TEST_F(Pump, homing_claims_the_flag_with_both_edges_and_gives_it_back) {
    SetPumpAngle(330.0);
    EXPECT_TRUE(worker.FindHomePosition(6.0));
    const Texts trace = Board().Trace();
    ASSERT_GE(trace.size(), 4U);
    EXPECT_EQ((Texts{trace[0], trace[1], trace[2]}),
              (Texts{Gpio + "export=50", Gpio + "pioB18/direction=in", Gpio + "pioB18/edge=both"}));
    EXPECT_EQ(trace.back(), Gpio + "unexport=50");
}

TEST_F(Pump, homing_resets_the_angle) {
    Turn(270.0F, 270, 5000);
    step.findStartPosition = true;
    SetPumpAngle(300.0);
    Turn(360.0F, 6, 20000);
    step.findStartPosition = false;
    Turn(90.0F, 90, 5000);
    EXPECT_EQ(Periods(), Texts{Pwm + "1/period=2500000"});  // 90 degrees and not 180
}

TEST_F(Pump, a_flag_that_stays_high_ends_the_homing_after_390_degrees) {
    SetFault("flag-stuck-high");
    EXPECT_FALSE(worker.FindHomePosition(360.0));
    EXPECT_EQ(LogLines(), Texts{NoHome});
    EXPECT_THAT(Between(Pwm + "1/enable=1", Pwm + "1/enable=0"), IsWaitOf(1.083));
    EXPECT_FALSE(Board().Pwm(1).enabled);
    EXPECT_FALSE(Board().Pin(0, 4).level);
    EXPECT_FALSE(Board().Pin(1, 18).claimed);
}

TEST_F(Pump, a_flag_that_stays_low_is_waited_for_three_times) {
    SetFault("flag-stuck-low");
    EXPECT_FALSE(worker.FindHomePosition(360.0));
    EXPECT_EQ(LogLines(), Texts{NoHome});
    // 166 ms, raised to the least wait of the sensor
    EXPECT_THAT(Between(Pwm + "1/enable=1", Pwm + "1/enable=0"), IsWaitOf(1.0));
    EXPECT_THAT(Between(Pwm + "1/enable=1", Gpio + "unexport=50"), IsWaitOf(3.0));
}

TEST_F(Pump, a_flag_that_stays_low_stops_the_pump_after_60_degrees) {
    SetFault("flag-stuck-low");
    EXPECT_FALSE(worker.FindHomePosition(20.0));
    EXPECT_THAT(Between(Pwm + "1/enable=1", Pwm + "1/enable=0"), IsWaitOf(3.0));
}

TEST_F(Pump, a_stalled_pump_is_not_found_home) {
    SetPumpAngle(200.0);
    SetFault("motor-stalled");
    EXPECT_FALSE(worker.FindHomePosition(180.0));
    EXPECT_EQ(LogLines(), Texts{NoHome});
}

TEST_F(Pump, without_a_motor_homing_is_reported_and_fails) {
    worker.SetMotor(nullptr);
    EXPECT_FALSE(worker.FindHomePosition(180.0));
    EXPECT_EQ(LogLines(), Texts{"ReAgentDeliveryProcessing::FindHomePosition Unable to find Home position due to "
                                "unavailable device object"});
    EXPECT_FALSE(Board().Pin(1, 18).claimed);
}

TEST_F(Pump, homing_at_a_negative_speed_fails) {
    testing::internal::CaptureStdout();
    EXPECT_FALSE(worker.FindHomePosition(-1.0));
    EXPECT_EQ(testing::internal::GetCapturedStdout().substr(0, 56),
              "Invalid PWM frequency or duty cycle in StepperDriver::St");
    EXPECT_EQ(LogLines(), Texts{NoHome});
    EXPECT_EQ(Periods(), Texts{});
}

TEST_F(Pump, a_homing_that_fails_leaves_the_motor_free_for_the_next_turn) {
    SetFault("motor-stalled");
    step.findStartPosition = true;
    Turn(360.0F, 180, 20000);
    step.findStartPosition = false;
    Turn(90.0F, 90, 5000);
    EXPECT_EQ(Periods(), Texts{Pwm + "1/period=2500000"});
}

TEST_F(Pump, a_turn_that_fails_leaves_the_motor_free_for_the_next_step) {
    SetFault("pwm-missing");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Turn(90.0F, 90, 5000);
    ASSERT_EQ(TraceOf("pioA4/value="), (Texts{Gpio + "pioA4/value=1", Gpio + "pioA4/value=0"}));
    Turn(180.0F, 90, 5000);
    EXPECT_EQ(TraceOf("pioA4/value="), (Texts{Gpio + "pioA4/value=1", Gpio + "pioA4/value=0"}));
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
}
