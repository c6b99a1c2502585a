// Connects to the test server and reads its frames. It posts one message to the test interface for each frame, and one
// without a frame at the end. The thread starts with the object; its owner calls Kill, joins it and deletes it.
#pragma once

#include "Frameworks/IPC/Networking/TCPClient.h"
#include "Frameworks/Threading/ThreadBase.h"
#include "System/TestInterface/FrameGate.h"

class ReceiverThread final : public ThreadBase {
public:
    ReceiverThread();  // the thread id is 0 if the system refused a thread

    std::int32_t Run() override;
    // Any thread. Ends a blocked read, a wait between attempts and an attempt itself; no other attempt follows.
    void Kill() override;
    std::int32_t Exit() override;
    bool Init() override;  // true if it is connected

    TCPClient GetClient() const { return m_client; }  // a copy that shares the connection; any thread
    // The message of the end has been posted or is about to be. Any thread.
    bool HasEnded() const { return m_hasEnded; }

private:
    void ReadConfiguration();
    bool ConnectWithRetries();
    bool ReceiveFrame();

    TCPClient m_client;
    StdString m_serverIPAddress;
    StdString m_serverName;
    StdString m_portNumber;
    StdString m_retryCount;
    StdString m_retryWaitPeriod;
    StdString m_interfaceName;
    std::shared_ptr<FrameGate> m_gate = std::make_shared<FrameGate>();
    std::atomic<bool> m_hasEnded{false};
};
