// Connects to the front end and posts each received text to the controller as a message. Its creator kills it, joins
// its thread and deletes it. Any thread may call GetClient and Kill; everything else runs on its own thread.
#pragma once

#include <atomic>

#include "Frameworks/IPC/Networking/TCPClient.h"
#include "Frameworks/Threading/ThreadBase.h"
#include "System/Messages/UserInterfaceDataMessage.h"

class ReceiverThreadForGUI final : public ThreadBase {
public:
    ReceiverThreadForGUI();  // starts the thread

    std::int32_t Run() override;
    void Kill() override;
    std::int32_t Exit() override;  // never called: the thread simply ends
    bool Init() override;          // returns whether the front end is connected

    TCPClient* GetClient() { return &m_client; }

    // With a copy of the text.
    static std::unique_ptr<UserInterfaceDataMessage> MakeMessage(const StdString& text);
    static void PostMessage(std::unique_ptr<UserInterfaceDataMessage> message);  // null is ignored

private:
    bool ConnectWithRetries();

    TCPClient m_client;
    // The same fields as the settings of the test link; here they are constants.
    StdString m_serverIPAddress;
    StdString m_serverName;
    StdString m_portNumber;
    StdString m_connectionRetryCount;
    StdString m_connectionRetryWaitPeriod;  // s; empty counts as 0
    StdString m_interfaceName;
};
