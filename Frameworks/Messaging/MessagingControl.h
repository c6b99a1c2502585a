// The router: sends a clone of each command and each data message to every controller that registered for it, in order
// of registration. Registering and GetThreadByName may be called from any thread. Log lines wait here until the first
// controller registers for them.
#pragma once

#include <map>
#include <vector>

#include "Frameworks/Messaging/ThreadControl.h"

class MessagingControl : public ThreadControl {
public:
    MessagingControl();

    bool Init() override;
    bool DoRegistration() override { return true; }
    bool RegisterCommand(ThreadControl* thread, CommandType command) override;       // false: registered already
    bool RegisterDataMessage(ThreadControl* thread, DataMessageType type) override;  // false: registered already
    bool ProcessCommandMessage(CommandMessage* message) override;
    bool ProcessDataMessage(DataMessage* message) override;

    ThreadControl* GetThreadByName(const StdString& name);  // null for a name that never registered for a command

private:
    using Subscribers = std::vector<ThreadControl*>;

    Subscribers SubscribersOf(CommandType command);
    Subscribers SubscribersOf(DataMessageType type);
    void ProcessLogMessage(const DataMessage& message);
    void FlushPendingLog(const Subscribers& subscribers);

    Mutex m_tablesMutex;
    std::map<CommandType, Subscribers> m_commands GUARDED_BY(m_tablesMutex);
    std::map<DataMessageType, Subscribers> m_data GUARDED_BY(m_tablesMutex);
    std::map<StdString, ThreadControl*> m_names GUARDED_BY(m_tablesMutex);
    std::vector<std::unique_ptr<MessageBase>> m_pendingLog;  // the router's own thread only
};
