// The measurement controller: it turns commands into states, starts and aborts measurement cycles, primes the fluidics,
// and serves the test link's requests for lines of the board. The cycle has its own thread, so the queue is served
// meanwhile; priming, aborting and the waits block it. Kill may be called from any thread.
#pragma once

#include "Frameworks/Messaging/ThreadControl.h"
#include "System/MeasurementEngine/MeasurementControl.h"

class MeasurementEngine final : public ThreadControl {
public:
    MeasurementEngine();  // starts the thread

    void Kill() override;  // returns when a cycle in progress has ended its step
    bool Init() override;
    // Registers nothing: the handlers of the test link's requests exist, but the router delivers none here yet.
    bool DoRegistration() override { return true; }
    bool ProcessCommandMessage(CommandMessage* message) override;
    bool ProcessDataMessage(DataMessage* message) override;

private:
    void MoveToIdle();
    void MoveToRunning();
    void MoveToShutdown();
    void Prime();
    void Collect(const CommandMessage& message);
    void AnalogInput(const DataMessage& message);

    MeasurementControl m_control;
};
