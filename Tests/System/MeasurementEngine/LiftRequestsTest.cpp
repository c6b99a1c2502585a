#include "System/MeasurementEngine/LiftRequests.h"

#include <cerrno>
#include <fstream>

#include "Drivers/GpioPin.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/System/MeasurementEngine/MeasurementFixture.h"

namespace {

const std::string Gpio = "/sys/class/gpio/";
const std::string Pwm = "/sys/class/pwm/pwmchip0/";
const std::string NullMessage = "Attempt to send NULL message";

class Lift : public MeasurementFixture {
protected:
    std::vector<AdcReading> Read(std::uint32_t id, std::uint32_t count, const TimeSpec& interval = TimeSpec(0, 0)) {
        AdcStatusMessage request;
        request.GetAdcStatusInfo().SetSignalId(id);
        request.GetAdcStatusInfo().SetSampleCount(count);
        request.GetAdcStatusInfo().SetSampleInterval(interval);
        EXPECT_TRUE(LIFTAnalogInput(&request));
        Settle();
        const auto answers = listener.Copies<AdcStatusMessage>(ADC_STATUS_MESSAGE);
        EXPECT_EQ(answers.back().GetSubType(), 1);
        return answers.back().GetAdcStatusInfo().GetReadings();
    }

    std::int32_t ReadOne(std::uint32_t id) {
        const std::vector<AdcReading> readings = Read(id, 1);
        EXPECT_EQ(readings.size(), 1U);
        return readings.at(0).value;
    }

    std::string ReadPin(std::uint16_t id) {
        TestDigitalInputPinsMessage request;
        request.SetPinId(id);
        LIFTDigitalInput(request);
        Settle();
        const auto answers = listener.Copies<TestDigitalInputPinsMessage>(TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE);
        EXPECT_EQ(answers.back().GetSubType(), 1);
        const std::vector<char> values = answers.back().GetValues();
        return {values.begin(), values.end()};
    }

    std::string WritePin(std::uint16_t id, const char* value, std::uint8_t marker = 0) {
        TestDigitalOutputPinsMessage request;
        request.SetPinId(id);
        request.SetReadMarker(marker);
        request.SetValue(value);
        LIFTDigitalOutput(request);
        Settle();
        const auto answers = listener.Copies<TestDigitalOutputPinsMessage>(TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE);
        EXPECT_EQ(answers.back().GetSubType(), 1);
        return answers.back().GetValue().Text();
    }

    std::string SetPwm(int channel, int function, const char* value) {
        TestPWMMessage request;
        request.SetId(static_cast<std::uint16_t>(channel * 3 + function));
        request.SetValue(value);
        LIFTPWM(request);
        Settle();
        const auto answers = listener.Copies<TestPWMMessage>(TEST_PWM_DATA_MESSAGE);
        EXPECT_EQ(answers.back().GetSubType(), 1);
        return answers.back().GetValue().Text();
    }
};

// A channel stays claimed to the end of the process, and a fresh board knows nothing of it: each test has its own
// channel.
using LiftPwm = Lift;

double SecondsOf(const AdcReading& reading) { return reading.seconds + reading.nanoSeconds / 1e9; }

}  // namespace

TEST_F(Lift, signals_without_a_converter_channel_give_the_requested_number_of_zeros) {
    for (const std::uint32_t id : {10084U, 10085U}) {
        const std::vector<AdcReading> readings = Read(id, 5);
        ASSERT_EQ(readings.size(), 5U);
        for (const AdcReading& reading : readings) {
            EXPECT_EQ(reading.value, 0);
        }
    }
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Lift, signals_out_of_range_are_zero) {
    EXPECT_EQ(ReadOne(10069), 0);
    EXPECT_EQ(ReadOne(10102), 0);
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Lift, no_reading_wanted_gives_an_empty_answer) { EXPECT_TRUE(Read(10070, 0).empty()); }

// One test, since the process opens the converter's bus once, on the board of that moment.
TEST_F(Lift, converter_signals_are_two_ids_a_channel_and_only_channel_0_has_a_value) {
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(-1234), Bench::SpiAnswer::Count(5678)});
    EXPECT_EQ(ReadOne(10070), -1234);
    EXPECT_EQ(ReadOne(10071), 5678);
    testing::internal::CaptureStdout();
    EXPECT_EQ(ReadOne(10072), 0);
    EXPECT_EQ(ReadOne(10083), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(TraceOf("spi write"), (Texts{"spi write a080", "spi write a080", "spi write a180", "spi write a680"}));

    Board().SetEndOfConversion(Bench::EndOfConversion::StuckHigh);
    testing::internal::CaptureStdout();
    EXPECT_EQ(ReadOne(10070), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "24 Bit ADC Driver: Conversion did not finish in allotted time");
    EXPECT_EQ(LogLines(), Texts{});
}

TEST_F(Lift, multiplexer_signals_are_whole_millivolts) {
    Board().SetIioScale("1.0");
    Board().SetMultiplexerRaw(0, 1500);   // 1.46484 V
    Board().SetMultiplexerRaw(15, 1024);  // 1 V
    EXPECT_EQ(ReadOne(10086), 1464);
    EXPECT_EQ(ReadOne(10101), 1000);
}

TEST_F(Lift, the_demultiplexer_lines_are_given_back) {
    ReadOne(10089);
    for (const int pin : {27, 28, 31}) {
        EXPECT_FALSE(Board().Pin(2, pin).claimed) << pin;
    }
    EXPECT_FALSE(Board().Pin(3, 10).claimed);
    EXPECT_EQ(TraceOf("unexport=").size(), 4U);
}

TEST_F(Lift, a_voltage_that_cannot_be_read_is_zero) {
    Board().SetMultiplexerRaw(0, 1500);
    SetFault("iio-missing");
    testing::internal::CaptureStderr();
    EXPECT_EQ(ReadOne(10086), 0);
    testing::internal::GetCapturedStderr();
}

TEST_F(Lift, readings_are_an_interval_apart) {
    const std::vector<AdcReading> readings = Read(10084, 3, TimeSpec(1, 200000000));
    ASSERT_EQ(readings.size(), 3U);
    EXPECT_THAT(SecondsOf(readings[1]) - SecondsOf(readings[0]), IsWaitOf(1.2));
    EXPECT_THAT(SecondsOf(readings[2]) - SecondsOf(readings[1]), IsWaitOf(1.2));
}

TEST_F(Lift, an_interval_below_one_second_is_not_waited_for) {
    const std::vector<AdcReading> readings = Read(10084, 2, TimeSpec(0, 999000000));
    EXPECT_THAT(SecondsOf(readings[1]) - SecondsOf(readings[0]), IsWaitOf(0.0));
}

TEST_F(Lift, an_interval_out_of_range_is_not_waited_for) {
    EXPECT_EQ(Read(10084, 2, TimeSpec(-2147483647 - 1, 5)).size(), 2U);
    EXPECT_EQ(Read(10084, 2, TimeSpec(0, -2147483647 - 1)).size(), 2U);
    EXPECT_EQ(Read(10084, 2, TimeSpec(5, 2147483647)).size(), 2U);
}

TEST_F(Lift, no_request_and_an_answer_are_refused) {
    EXPECT_FALSE(LIFTAnalogInput(nullptr));
    AdcStatusMessage answer;
    answer.SetSubType(1);
    EXPECT_FALSE(LIFTAnalogInput(&answer));
    Settle();
    EXPECT_TRUE(listener.Copies<AdcStatusMessage>(ADC_STATUS_MESSAGE).empty());
}

TEST_F(Lift, an_analog_answer_without_memory_is_refused) {
    const AdcStatusMessage request;
    const FailingAllocation failing(1);
    EXPECT_FALSE(LIFTAnalogInput(&request));
    EXPECT_EQ(LogLines(), Texts{});
}

TEST_F(Lift, an_input_pin_is_read_from_its_bank_without_a_claim) {
    Board().DrivePin(3, 7, true);
    Board().DrivePin(3, 8, false);
    EXPECT_EQ(ReadPin(3 * 32 + 7), "1");
    EXPECT_EQ(ReadPin(3 * 32 + 8), "0");
    EXPECT_EQ(TraceOf("export"), Texts{});
}

TEST_F(Lift, an_input_pin_of_no_bank_answers_the_error_digit) {
    EXPECT_EQ(ReadPin(128), "3");
    EXPECT_EQ(ReadPin(65535), "3");
}

TEST_F(Lift, an_input_pin_that_cannot_be_read_answers_the_error_digit) {
    SetFault("mem-missing");
    testing::internal::CaptureStderr();
    EXPECT_EQ(ReadPin(7), "3");
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(LogLines(), Texts{"MemoryMappedIO - 'Open' error"});
}

TEST_F(Lift, an_output_pin_that_cannot_be_written_answers_nothing) {
    SetFault("gpio-missing");
    testing::internal::CaptureStderr();
    EXPECT_EQ(WritePin(69, "1"), "");
    testing::internal::GetCapturedStderr();
}

TEST_F(Lift, an_input_answer_without_memory_is_reported) {
    const FailingAllocation failing(1);
    LIFTDigitalInput(TestDigitalInputPinsMessage());
    EXPECT_EQ(LogLines(), (Texts{NullMessage, "MeasurementEngineControl - sending digital input pins message failed"}));
}

TEST_F(Lift, an_output_pin_is_claimed_written_and_given_back) {
    EXPECT_EQ(WritePin(2 * 32 + 5, "1"), "1");
    EXPECT_EQ(TraceOf(Gpio), (Texts{Gpio + "export=69", Gpio + "pioC5/direction=out", Gpio + "pioC5/edge=none",
                                    Gpio + "pioC5/value=1", Gpio + "unexport=69"}));
    EXPECT_FALSE(Board().Pin(2, 5).claimed);
}

TEST_F(Lift, an_output_pin_is_low_only_for_a_text_that_begins_with_0) {
    EXPECT_EQ(WritePin(69, "0"), "0");
    EXPECT_EQ(WritePin(69, "01"), "0");
    EXPECT_EQ(WritePin(69, "10"), "1");
    EXPECT_EQ(WritePin(69, ""), "1");
    EXPECT_EQ(WritePin(69, "off"), "1");
}

TEST_F(Lift, a_read_marker_touches_no_pin) {
    EXPECT_EQ(WritePin(69, "1", 1), "Write flag is not set!");
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Lift, an_output_pin_of_no_bank_answers_nothing) {
    EXPECT_EQ(WritePin(128, "1"), "");
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(Lift, an_output_answer_without_memory_is_reported) {
    const FailingAllocation failing(1);
    LIFTDigitalOutput(TestDigitalOutputPinsMessage());
    EXPECT_EQ(LogLines(),
              (Texts{NullMessage, "MeasurementEngineControl - sending digital output pins message failed"}));
}

TEST_F(LiftPwm, an_empty_value_makes_the_channel_changes_nothing_else_and_takes_a_second) {
    const double began = Board().Seconds();
    EXPECT_EQ(SetPwm(0, 1, ""), "");
    EXPECT_THAT(Board().Seconds() - began, IsWaitOf(1.0));
    EXPECT_EQ(Board().Pwm(0).period, 1000000U);
    EXPECT_EQ(Board().Pwm(0).duty, 500000U);
    EXPECT_TRUE(Board().Pwm(0).enabled);
    Board().ClearTrace();
    EXPECT_EQ(SetPwm(0, 2, ""), "");
    EXPECT_EQ(Board().Trace(), Texts{});
}

TEST_F(LiftPwm, function_0_switches_by_a_flag) {
    EXPECT_EQ(SetPwm(1, 0, "off"), "off");
    EXPECT_FALSE(Board().Pwm(1).enabled);
    EXPECT_EQ(SetPwm(1, 0, "Yes"), "Yes");
    EXPECT_TRUE(Board().Pwm(1).enabled);
}

TEST_F(LiftPwm, functions_1_and_2_set_frequency_and_duty) {
    EXPECT_EQ(SetPwm(2, 1, "500.0"), "500.0");
    EXPECT_EQ(Board().Pwm(2).period, 2000000U);
    EXPECT_EQ(Board().Pwm(2).duty, 1000000U);
    EXPECT_EQ(SetPwm(2, 2, "25.0"), "25.0");
    EXPECT_EQ(Board().Pwm(2).period, 2000000U);
    EXPECT_EQ(Board().Pwm(2).duty, 500000U);
}

TEST_F(LiftPwm, a_channel_that_refuses_is_reported_by_function_and_answered) {
    EXPECT_EQ(SetPwm(3, 0, ""), "");
    std::ofstream(Pwm + "unexport") << "3";  // without its knowledge
    ASSERT_FALSE(Board().Pwm(3).exported);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(SetPwm(3, 0, "on"), "on");
    EXPECT_EQ(SetPwm(3, 1, "500"), "500");
    EXPECT_EQ(SetPwm(3, 2, "25"), "25");
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(LogLines(), (Texts{"MeasurementEngine::LIFTPWM - failed to enable/disable PWM",
                                 "MeasurementEngine::LIFTPWM - failed to set PWM frequency",
                                 "MeasurementEngine::LIFTPWM - failed to set PWM duty cycle"}));
}

TEST_F(LiftPwm, a_channel_that_the_board_does_not_have_is_answered_and_takes_a_second) {
    for (const int channel : {4, 51, 52, 21844}) {
        const double began = Board().Seconds();
        EXPECT_EQ(SetPwm(channel, 0, "on"), "on");
        EXPECT_THAT(Board().Seconds() - began, IsWaitOf(1.0));
    }
    EXPECT_EQ(Board().Trace(), Texts{});
    EXPECT_EQ(LogLines(), Texts{});
}

TEST_F(LiftPwm, no_channel_is_made_if_their_count_cannot_be_read) {
    EXPECT_TRUE(Board().FailCall("open", 1, EACCES));
    EXPECT_EQ(SetPwm(0, 0, "on"), "on");
    EXPECT_EQ(Board().Trace(), Texts{});
    EXPECT_EQ(LogLines(), Texts{});
}

TEST_F(LiftPwm, an_answer_without_memory_is_reported) {
    TestPWMMessage request;
    request.SetId(4 * 3);
    const FailingAllocation failing(1);
    LIFTPWM(request);
    EXPECT_EQ(LogLines(), (Texts{NullMessage, "MeasurementEngineControl - sending PWM message failed"}));
}
