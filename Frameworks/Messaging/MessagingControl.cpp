#include "Frameworks/Messaging/MessagingControl.h"

#include <algorithm>

namespace {

// A sender's message has the count 1; a clone inherits it, and Send makes it 2. So a message with a count of 2 or more
// is the router's own clone, and is never forwarded again.
bool IsFromSender(const MessageBase& message) { return message.GetSendCount() < 2; }

bool AddSubscriber(std::vector<ThreadControl*>& subscribers, ThreadControl* thread) {
    if (std::find(subscribers.begin(), subscribers.end(), thread) != subscribers.end()) {
        return false;
    }
    subscribers.push_back(thread);
    return true;
}

void SendClone(const MessageBase& message, ThreadControl* subscriber) {
    if (std::unique_ptr<MessageBase> clone = message.Clone()) {
        clone->SetDestination(subscriber);
        MessageBase::Send(std::move(clone));
    }
}

void FanOut(const MessageBase& message, const std::vector<ThreadControl*>& subscribers) {
    for (ThreadControl* subscriber : subscribers) {
        SendClone(message, subscriber);
    }
}

}  // namespace

MessagingControl::MessagingControl() { StartAs(ControllerNames[MESSAGING_CONTROL]); }

bool MessagingControl::Init() { return InitController() && DoRegistration(); }

bool MessagingControl::RegisterCommand(ThreadControl* thread, CommandType command) {
    const MutexLock lock(m_tablesMutex);
    m_names[thread->GetThreadName()] = thread;
    return AddSubscriber(m_commands[command], thread);
}

bool MessagingControl::RegisterDataMessage(ThreadControl* thread, DataMessageType type) {
    const MutexLock lock(m_tablesMutex);
    return AddSubscriber(m_data[type], thread);
}

ThreadControl* MessagingControl::GetThreadByName(const StdString& name) {
    const MutexLock lock(m_tablesMutex);
    return m_names[name];
}

MessagingControl::Subscribers MessagingControl::SubscribersOf(CommandType command) {
    const MutexLock lock(m_tablesMutex);
    const auto found = m_commands.find(command);
    return found == m_commands.end() ? Subscribers() : found->second;
}

MessagingControl::Subscribers MessagingControl::SubscribersOf(DataMessageType type) {
    const MutexLock lock(m_tablesMutex);
    const auto found = m_data.find(type);
    return found == m_data.end() ? Subscribers() : found->second;
}

bool MessagingControl::ProcessCommandMessage(CommandMessage* message) {
    if (message == nullptr) {
        return false;
    }
    if (IsFromSender(*message)) {
        FanOut(*message, SubscribersOf(message->GetCommandType()));
        return true;
    }
    if (FollowStateCommand(message->GetCommandType())) {
        SetTimeOut(-1);
    }
    return true;
}

bool MessagingControl::ProcessDataMessage(DataMessage* message) {
    if (message == nullptr) {
        return false;
    }
    if (!IsFromSender(*message)) {
        return true;
    }
    if (message->GetDataType() == LOGGING_DATA_MESSAGE) {
        ProcessLogMessage(*message);
    } else {
        FanOut(*message, SubscribersOf(message->GetDataType()));
    }
    return true;
}

// The line that finds a backlog releases it and is itself lost. This is required behavior.
void MessagingControl::ProcessLogMessage(const DataMessage& message) {
    const Subscribers subscribers = SubscribersOf(LOGGING_DATA_MESSAGE);
    if (subscribers.empty()) {
        m_pendingLog.push_back(message.Clone());
    } else if (m_pendingLog.empty()) {
        FanOut(message, subscribers);
    } else {
        FlushPendingLog(subscribers);
    }
}

// The last subscriber gets the waiting object itself, the others get clones: an object can be in one queue only.
void MessagingControl::FlushPendingLog(const Subscribers& subscribers) {
    const std::vector<ThreadControl*> others(subscribers.begin(), subscribers.end() - 1);
    for (std::unique_ptr<MessageBase>& pending : m_pendingLog) {
        FanOut(*pending, others);
        pending->SetDestination(subscribers.back());
        MessageBase::Send(std::move(pending));
    }
    m_pendingLog.clear();
}
