// The owner of the remote indicator: it keeps the status of the analyzer and of the water, turns the pair into a
// ColorCode, and serves the requests for LED tests, cable length and sound, in every state. Other threads reach it by
// messages alone. A request holds the queue for its whole length: a change of sound takes up to five seconds.
#pragma once

#include <memory>

#include "Drivers/RemoteIndicator.h"
#include "Frameworks/Messaging/ThreadControl.h"

class RemoteIndicatorAudioControlMessage;
class RemoteIndicatorControlMessage;
class RemoteIndicatorTestMessage;

class RemoteIndicatorControl final : public ThreadControl {
public:
    RemoteIndicatorControl();  // starts the thread

    // Shows blue on both sides. False, and the thread ends, where the indicator can't be had.
    bool Init() override;
    bool DoRegistration() override;
    bool ProcessDataMessage(DataMessage* message) override;

private:
    bool MakeDevice();
    void SetColors(const RemoteIndicatorControlMessage& message);
    void Acknowledge();
    void CalculateCableLength();
    void Test(const RemoteIndicatorTestMessage& message);
    void ControlAudio(const RemoteIndicatorAudioControlMessage& message);

    std::unique_ptr<RemoteIndicator> m_device;
    std::int32_t m_analyzerStatus = 1;
    std::int32_t m_waterStatus = 1;
};
