// Turns the reagent pump for a step: to an angle, or to its home flag. The pump turns in one direction only, and its
// angle counts from the last homing with the same object.
#pragma once

#include "System/MeasurementEngine/StepWorker.h"

class FlagSensor;
class StepperDriverMotor;

class ReAgentDeliveryProcessing final : public StepWorker {
public:
    ReAgentDeliveryProcessing() : StepWorker("ReAgentDeliveryProcessing") {}

    std::int32_t Exit() override;

    void SetMotor(StepperDriverMotor* motor) { m_motor = motor; }  // not owned

    // Runs to the rising edge of the home flag and 5 degrees past it, at so many degrees a second, on the caller's
    // thread. Without a motor, or if the edge does not come in time, it logs a line, stops the motor and returns false.
    bool FindHomePosition(double speed);

private:
    bool HasWork() const override { return m_motor != nullptr && GetStep()->motorSpeed != 0; }
    void Work() override { PerformReAgentProcessing(); }

    void PerformReAgentProcessing();
    bool FindRisingEdge(const FlagSensor& flag, double speed);
    void Move(double angle, std::uint32_t time);
    void StopAndBrake();

    double m_pumpAngle = 0.0;  // degrees
    StepperDriverMotor* m_motor = nullptr;
};

// Milliseconds that the pump has to leave the flag's high part of the turn, and to reach it, at so many degrees a
// second.
std::uint32_t FlagHighTimeOut(double speed);
std::uint32_t FlagLowTimeOut(double speed);

// Degrees forward from one angle to another.
double PumpTurn(double from, double to);

// Milliseconds for a turn to `angle` degrees at `speed` degrees a second, at most `duration`. It counts the step's
// absolute angle and not the way to it: a turn that does not begin at 0 runs at another speed. 0 for an angle below one
// degree, or for a time below 1 ms.
std::uint32_t PumpTurnTime(float angle, std::uint32_t speed, std::uint32_t duration);
