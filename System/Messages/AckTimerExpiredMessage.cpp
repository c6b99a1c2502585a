#include "System/Messages/AckTimerExpiredMessage.h"

bool AckTimerExpiredMessage::SendToOwner(std::unique_ptr<AckTimerExpiredMessage> message) {
    message->SetDestination(SYSTEM_MONITOR);
    message->SetSource(SYSTEM_MONITOR);
    return Send(std::move(message));
}
