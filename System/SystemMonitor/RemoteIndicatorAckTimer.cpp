#include "System/SystemMonitor/RemoteIndicatorAckTimer.h"

#include "System/Messages/AckTimerExpiredMessage.h"

RemoteIndicatorAckTimer::RemoteIndicatorAckTimer() {
    SetThreadName(ControllerNames[SYSTEM_MONITOR] + "_RemoteIndicatorAckTimer");
}

bool RemoteIndicatorAckTimer::TimerExpired() {
    auto message = std::make_unique<AckTimerExpiredMessage>();
    message->SetValue(0);
    return AckTimerExpiredMessage::SendToOwner(std::move(message));
}
