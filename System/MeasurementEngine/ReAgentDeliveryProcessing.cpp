#include "System/MeasurementEngine/ReAgentDeliveryProcessing.h"

#include <algorithm>

#include "Drivers/FlagSensor.h"
#include "Drivers/StepperDriverMotor.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Utilities/Truncate.h"

namespace {

constexpr float PumpDutyCycle = 50.0F;
constexpr std::uint32_t PumpCurrentLimit = 7;
constexpr double StepsPerDegree = 4.444444444444445;  // 1600 steps a revolution
constexpr double HighStretch = 390.0;  // degrees: whatever part of the turn the flag is high on, it has ended by then
constexpr double LowStretch = 60.0;
constexpr double PastTheEdge = 5.0;
constexpr int HomingTries = 3;

std::uint32_t MilliSecondsFor(double degrees, double speed) {
    return TruncateTo<std::uint32_t>(degrees / speed * 1000.0);
}

}  // namespace

std::uint32_t FlagHighTimeOut(double speed) { return MilliSecondsFor(HighStretch, speed); }

std::uint32_t FlagLowTimeOut(double speed) { return MilliSecondsFor(LowStretch, speed); }

double PumpTurn(double from, double to) { return to < from ? to + 360.0 - from : to - from; }

std::uint32_t PumpTurnTime(float angle, std::uint32_t speed, std::uint32_t duration) {
    const auto degreesPerSecond = static_cast<float>(speed);
    float time = 0.0F;
    if (std::int64_t{TruncateTo<std::int32_t>(angle)} < std::int64_t{speed}) {
        time = angle >= 1.0F ? 1000.0F / (degreesPerSecond / angle) : 0.0F;
    } else if (speed != 0) {
        time = static_cast<float>(TruncateTo<std::int32_t>(angle / degreesPerSecond * 1000.0F));
    }
    return TruncateTo<std::uint32_t>(std::min(time, static_cast<float>(duration)));
}

std::int32_t ReAgentDeliveryProcessing::Exit() {
    ForgetStep();
    return StepWorker::Exit();
}

// The time is checked first, so a homing step too needs an angle and a duration that give one.
void ReAgentDeliveryProcessing::PerformReAgentProcessing() {
    const StepParameters& step = *GetStep();
    const double turn = PumpTurn(m_pumpAngle, step.motorAngle);
    const std::uint32_t time = PumpTurnTime(step.motorAngle, step.motorSpeed, step.duration);
    if (time < 1) {
        ReportError(
            "ReAgentDeliveryProcessing::PerformReAgentProcessing Unable to perform ReAgend Processing due to invalid "
            "Motor Turn Time",
            MEASUREMENT_ENGINE);
        return;
    }
    if (step.findStartPosition) {
        FindHomePosition(step.motorSpeed);
        m_pumpAngle = 0.0;
        return;
    }
    m_pumpAngle = step.motorAngle;
    Move(turn, time);
}

bool ReAgentDeliveryProcessing::FindHomePosition(double speed) {
    const FlagSensor flag;
    if (m_motor == nullptr) {
        return ReportError(
            "ReAgentDeliveryProcessing::FindHomePosition Unable to find Home position due to unavailable device "
            "object",
            MEASUREMENT_ENGINE);
    }
    const auto frequency = TruncateTo<std::uint32_t>(speed * StepsPerDegree);
    m_motor->StartMotor(PumpDutyCycle, static_cast<float>(frequency), PumpCurrentLimit);
    if (!FindRisingEdge(flag, speed)) {
        StopAndBrake();
        return ReportError("ReAgentDeliveryProcessing::FindHomePosition Unable to find Home position",
                           MEASUREMENT_ENGINE);
    }
    Move(PastTheEdge, MilliSecondsFor(PastTheEdge, speed));
    return true;
}

// From inside the high stretch the pump first runs off it, then on to the next rising edge. After one wait for that
// edge the pump has stopped, seen or not, so the further tries only wait again.
bool ReAgentDeliveryProcessing::FindRisingEdge(const FlagSensor& flag, double speed) {
    bool found = false;
    for (int tries = 0; !found && tries < HomingTries; ++tries) {
        if (flag.IsHigh() && !flag.WaitForLow(FlagHighTimeOut(speed))) {
            return false;
        }
        if (!flag.IsHigh()) {
            found = flag.WaitForHigh(FlagLowTimeOut(speed));
            StopAndBrake();
        }
    }
    return found;
}

// A motor that fails within a move stays held until it is braked, and the next step would wait for it without end. A
// move that is refused outright, as one of no angle, leaves the motor alone.
void ReAgentDeliveryProcessing::Move(double angle, std::uint32_t time) {
    const bool moved = m_motor->MoveAngle(static_cast<float>(angle), PumpDutyCycle, time, false);
    if (!moved && angle > 0.0 && m_motor->IsValid()) {
        m_motor->Brake();
    }
}

void ReAgentDeliveryProcessing::StopAndBrake() {
    m_motor->Stop();
    m_motor->Brake();
}
