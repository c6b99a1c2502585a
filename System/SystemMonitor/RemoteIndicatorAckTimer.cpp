#include "System/SystemMonitor/RemoteIndicatorAckTimer.h"

#include "Frameworks/Utilities/TryMake.h"
#include "System/Messages/AckTimerExpiredMessage.h"

RemoteIndicatorAckTimer::RemoteIndicatorAckTimer() {
    SetThreadName(ControllerNames[SYSTEM_MONITOR] + "_RemoteIndicatorAckTimer");
}

bool RemoteIndicatorAckTimer::TimerExpired() {
    auto message = TryMake<AckTimerExpiredMessage>();
    if (message == nullptr) {
        return false;
    }
    message->SetValue(0);
    return AckTimerExpiredMessage::SendToOwner(std::move(message));
}
