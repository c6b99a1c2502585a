#include "System/TestInterface/TestInterfaceTimer.h"

#include "System/Messages/TimerCompleteMessage.h"

TestInterfaceTimer::TestInterfaceTimer() { SetThreadName(ControllerNames[TEST_INTERFACE] + "_TestInterfaceTimer"); }

bool TestInterfaceTimer::TimerExpired() {
    auto message = std::make_unique<TimerCompleteMessage>();
    message->SetDuration(GetDuration());
    message->SetDurationValue(GetDurationValue());
    message->SetNextCommand(GetNextCommand());
    return TimerCompleteMessage::SendToOwner(std::move(message));
}
