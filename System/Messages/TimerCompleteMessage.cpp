#include "System/Messages/TimerCompleteMessage.h"

bool TimerCompleteMessage::SendToOwner(std::unique_ptr<TimerCompleteMessage> message) {
    message->SetDestination(TEST_INTERFACE);
    message->SetSource(TEST_INTERFACE);
    return Send(std::move(message));
}
