// The controller that owns the remote indicator. It keeps the statuses of analyzer and water, shows the pair as a
// ColorCode, and handles requests for LED tests, cable length and sound, in every state. Other threads use messages
// only. A request blocks the queue until it is done: a change of sound takes up to five seconds.
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

    // Shows blue on both sides. Returns false, which ends the thread, if the indicator cannot be initialized.
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
