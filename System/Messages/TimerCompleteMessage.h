// The timer of TestInterface has expired; with the command to send next.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"
#include "Frameworks/Utilities/TimeInfo.h"

class TimerCompleteMessage : public DataMessageOf<TimerCompleteMessage, TIMER_COMPLETION_DATA_MESSAGE> {
public:
    TimerCompleteMessage() { m_durationValue.Clear(); }

    // Milliseconds.
    std::uint32_t GetDuration() const { return m_duration; }
    void SetDuration(std::uint32_t duration) { m_duration = duration; }

    // The same as seconds and nanoseconds; not a date.
    TimeInfo GetDurationValue() const { return m_durationValue; }
    void SetDurationValue(const TimeInfo& durationValue) { m_durationValue = durationValue; }

    CommandType GetNextCommand() const { return m_nextCommand; }
    void SetNextCommand(CommandType nextCommand) { m_nextCommand = nextCommand; }

    // Directly to the queue of TestInterface, not through the router. Returns false and loses the message if
    // TestInterface is not registered with the router.
    static bool SendToOwner(std::unique_ptr<TimerCompleteMessage> message);

private:
    std::uint32_t m_duration = 0;
    TimeInfo m_durationValue;
    CommandType m_nextCommand = NO_COMMAND;
};
