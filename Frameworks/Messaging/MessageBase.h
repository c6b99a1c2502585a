// The common part of every message: source, destination, how often it was queued, and when it was created. A message
// belongs to the holder of the pointer; Send hands it over. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "Frameworks/Utilities/Enumerations.h"
#include "Frameworks/Utilities/TimeInfo.h"

class MessagingControl;
class ThreadControl;

class MessageBase {
public:
    virtual ~MessageBase() = default;

    // A copy of the most derived class. It keeps time stamp, send count, source and destination, not their names.
    virtual std::unique_ptr<MessageBase> Clone() const = 0;

    bool IsCommand() const { return m_isCommand; }
    ThreadControl* GetSource() const { return m_source; }
    ThreadControl* GetDestination() const { return m_destination; }
    // Empty in a new message and in a copy. The text is the thread's own: read it while the thread exists.
    const StdString& GetSourceName() const { return *m_sourceName; }
    const StdString& GetDestinationName() const { return *m_destinationName; }
    std::int32_t GetSendCount() const { return m_sendCount; }
    const TimeInfo& GetTimeStamp() const { return m_timeStamp; }

    // A thread sets its name too; null keeps the former name.
    void SetDestination(ThreadControl* destination);
    void SetSource(ThreadControl* source);
    // By the router's name table; null if the controller is not registered there. The destination has to be one of the
    // nine controllers; any other source counts as MessagingControl.
    void SetDestination(ControllerType destination);
    void SetSource(ControllerType source);

    // Queues the message at its destination, on the caller's thread. A message without source or destination is
    // refused: the result is false and the message is freed.
    static bool Send(std::unique_ptr<MessageBase> message);

    // The process-wide router, or null. Any thread.
    static bool SetMessagingControl(MessagingControl* router);
    static MessagingControl* GetMessagingControl();

protected:
    explicit MessageBase(bool isCommand) : m_isCommand(isCommand) {}
    MessageBase(const MessageBase& other);
    MessageBase& operator=(const MessageBase& other);

private:
    static const StdString NoName;

    bool m_isCommand;
    std::int32_t m_sendCount = 0;
    ThreadControl* m_destination = nullptr;
    const StdString* m_destinationName = &NoName;
    ThreadControl* m_source = nullptr;
    const StdString* m_sourceName = &NoName;
    TimeInfo m_timeStamp;
};
