#include "System/DeviceMonitor/HardwareTests.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <optional>

#include "Drivers/Board.h"
#include "Drivers/Demultiplexer.h"
#include "Drivers/StepperDriverMotor.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/TryMake.h"
#include "System/DeviceMonitor/AudioRoutines.h"
#include "System/Messages/PeriodicHardwareTestMessage.h"
#include "System/Messages/RemoteIndicatorControlMessage.h"

namespace {

using Test = bool (HardwareTests::*)();

// By selector, from BOARD_VOLTAGES_TEST on, and in the order of a run of all.
constexpr Test Tests[] = {
    &HardwareTests::CheckBoardVoltages,
    &HardwareTests::TestAudioAmplifier,
    &HardwareTests::TestReagentMotor,
    &HardwareTests::TestStirMotor,
};
static_assert(BOARD_VOLTAGES_TEST + std::size(Tests) == ALL_HARDWARE_TESTS);

struct Rail {
    std::uint32_t channel;
    float low;   // volts; a rail exactly on a limit passes
    float high;  // volts
    const char* failure;
};

constexpr Rail Rails[] = {
    {OnBoard::Rail3V3Channel, 2.9F, 3.4F, "3.3V is outside of limits!"},
    {OnBoard::Rail1V8Channel, 1.6F, 2.0F, "1.8V is outside of limits!"},
    {OnBoard::Rail1V0Channel, 0.8F, 1.2F, "1.0V is outside of limits!"},
    {OnBoard::RailCore1V0Channel, 0.8F, 1.2F, "Core 1.0V is outside of limits!"},
};

constexpr char AlertFile[] = "alert.wav";
constexpr unsigned SecondsOfAlert = 1;
constexpr float AmplifierRise = 1e-6F;  // volts; an equal rise passes

struct MotorStage {
    std::uint8_t channel;  // PWM
    std::optional<PinAddress> direction;
    PinAddress enable;
    float rise;  // volts; an equal rise fails
};

constexpr MotorStage ReagentStage{OnBoard::PumpPwm, OnBoard::PumpDirection, OnBoard::PumpEnable, 0.5F};
constexpr MotorStage StirStage{OnBoard::StirPwm, std::nullopt, OnBoard::StirEnable, 0.03F};

constexpr float MotorDutyCycle = 50.0F;    // percent
constexpr float MotorFrequency = 1000.0F;  // hertz
constexpr std::uint32_t MotorCurrentLimit = 7;

// The origin is SystemControl: the analyzer's status is that of the whole system.
void RequestAmberAnalyzer() {
    auto message = TryMake<RemoteIndicatorControlMessage>();
    if (message != nullptr) {
        message->SetAnalyzerStatus(ALERT_STATUS);
        message->SetStatusSelect(ANALYZER_STATUS);
    }
    MessageController::SendMessage(std::move(message), SYSTEM_CONTROL);
}

bool FailTest(const char* text) {
    ReportError(text, DEVICE_MONITOR);
    RequestAmberAnalyzer();
    return false;
}

bool IsWithinLimits(const Rail& rail, const std::list<float>& voltages) {
    const float voltage = *std::next(voltages.begin(), static_cast<std::ptrdiff_t>(rail.channel));
    return !(voltage > rail.high || voltage < rail.low);
}

bool ReadMeasure(float& volts) {
    Demultiplexer demultiplexer;
    return demultiplexer.Init(OnBoard::MultiplexerLines) &&
           demultiplexer.ReadVoltage(OnBoard::SupplyLoadChannel, volts);
}

bool SetUp(StepperDriverBase& motor, const MotorStage& stage) {
    return stage.direction ? motor.SetUpPins(stage.enable, *stage.direction) : motor.SetUpEnablePin(stage.enable);
}

bool SetUp(StepperDriverMotor& motor, const MotorStage& stage) {
    return SetUp(static_cast<StepperDriverBase&>(motor), stage) &&
           motor.SetUpCurrentLimit(OnBoard::PumpCurrentLimit, OnBoard::PumpInitialLimit);
}

bool Start(StepperDriverBase& motor) { return motor.Start(MotorDutyCycle, MotorFrequency); }

bool Start(StepperDriverMotor& motor) { return motor.StartMotor(MotorDutyCycle, MotorFrequency, MotorCurrentLimit); }

template <typename Motor>
bool MeasureRise(const MotorStage& stage, float& rise) {
    Motor motor(stage.channel);
    float idle = 0.0F;
    float running = 0.0F;
    if (!SetUp(motor, stage) || !motor.Stop() || !ReadMeasure(idle) || !Start(motor)) {
        return false;
    }
    const bool isRead = ReadMeasure(running);
    const bool isStopped = motor.Stop();
    rise = running - idle;
    return isRead && isStopped;
}

// Both stages log the reagent motor's text, which readers of existing logs expect.
template <typename Motor>
bool RisesEnough(const MotorStage& stage) {
    float rise = 0.0F;
    return MeasureRise<Motor>(stage, rise) &&
           (rise > stage.rise || FailTest("Reagent delivery stepper motor test failed"));
}

bool AmplifierRises() {
    float quiet = 0.0F;
    float loud = 0.0F;
    if (!ReadMeasure(quiet) || !PlayAudio(AlertFile)) {
        return false;
    }
    sleep(SecondsOfAlert);
    return ReadMeasure(loud) && (!(loud - quiet < AmplifierRise) || FailTest("Audio amp test failed"));
}

// The sound is restarted after any result.
bool RunInSilence(bool (*test)()) {
    const bool isPassed = TurnOffAudio() && test();
    return RestartAudio() && isPassed;
}

}  // namespace

bool HardwareTests::Run(std::int32_t selector) {
    if (selector == ALL_HARDWARE_TESTS) {
        return std::all_of(std::begin(Tests), std::end(Tests), [this](Test test) { return (this->*test)(); });
    }
    return selector >= BOARD_VOLTAGES_TEST && selector < ALL_HARDWARE_TESTS &&
           (this->*Tests[selector - BOARD_VOLTAGES_TEST])();
}

bool HardwareTests::CheckBoardVoltages() {
    Demultiplexer demultiplexer;
    if (!demultiplexer.Init(OnBoard::MultiplexerLines)) {
        return ReportError("DeviceMonitor::CheckBoardVoltages - Initializing demux failed!", DEVICE_MONITOR);
    }
    if (!demultiplexer.ReadAllVoltages(m_voltages)) {
        return ReportError("DeviceMonitor::CheckBoardVoltages - Reading voltages failed!", DEVICE_MONITOR);
    }
    bool isPassed = true;
    for (const Rail& rail : Rails) {
        if (!IsWithinLimits(rail, m_voltages)) {
            isPassed = ReportError(rail.failure, DEVICE_MONITOR);
        }
    }
    if (!isPassed) {
        RequestAmberAnalyzer();
    }
    return isPassed;
}

bool HardwareTests::TestAudioAmplifier() { return RunInSilence(AmplifierRises); }

bool HardwareTests::TestReagentMotor() {
    return RunInSilence([] { return RisesEnough<StepperDriverMotor>(ReagentStage); });
}

bool HardwareTests::TestStirMotor() {
    return RunInSilence([] { return RisesEnough<StepperDriverBase>(StirStage); });
}
