// The remote indicator has not acknowledged in time.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class AckTimerExpiredMessage : public DataMessageOf<AckTimerExpiredMessage, ACK_TIMER_EXPIRED_DATA_MESSAGE> {
public:
    std::int32_t GetValue() const { return m_value; }
    void SetValue(std::int32_t value) { m_value = value; }

    // Straight to the system monitor's queue, past the router. False, and the message is lost, where nobody registered
    // it.
    static bool SendToOwner(std::unique_ptr<AckTimerExpiredMessage> message);

private:
    std::int32_t m_value = 0;
};
