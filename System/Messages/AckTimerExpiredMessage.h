// The remote indicator has not acknowledged in time.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class AckTimerExpiredMessage : public DataMessageOf<AckTimerExpiredMessage, ACK_TIMER_EXPIRED_DATA_MESSAGE> {
public:
    std::int32_t GetValue() const { return m_value; }
    void SetValue(std::int32_t value) { m_value = value; }

    // Directly to the queue of SystemMonitor, not through the router. Returns false and loses the message if
    // SystemMonitor is not registered with the router.
    static bool SendToOwner(std::unique_ptr<AckTimerExpiredMessage> message);

private:
    std::int32_t m_value = 0;
};
