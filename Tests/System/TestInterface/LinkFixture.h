// The whole system on the board with a test server at the other end of its link.
#pragma once

#include "Frameworks/IPC/Networking/TCPClient.h"
#include "Tests/Support/SystemFixture.h"
#include "Tests/Support/TestLink.h"

class LinkOnBoard : public SystemOnBoard {
protected:
    LinkOnBoard() : SystemOnBoard(50.0) {
        EXPECT_TRUE(Board().MapPort(1200, listener.Port()));
        EXPECT_TRUE(Board().MapPort(3111, frontEnd.Port()));
    }

    ~LinkOnBoard() override {  // a frame to a front end that has gone would end this process
        if (system != nullptr) {
            Reset();
        }
    }

    // Every controller is idle, and the front-end link has set the interface's name, which all links share: from then
    // on only the test link changes it.
    void StartIdle() {
        TCPClient::SetInterfaceName("none");
        Start();
        WaitForIdle();
        EXPECT_TRUE(Board().WaitUntil([] { return TCPClient::GetInterfaceName() == "lo"; }));
    }

    // In the test state, with the link up.
    RawConnection Connect() {
        StartIdle();
        Send(MOVE_TO_TEST);
        return listener.Accept();
    }

    // All lines sent before are in the log.
    void Settle() {
        const std::string mark = "all of it, " + std::to_string(m_marks++);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
        WaitFor(mark);
    }

    // Removes the earlier lines: those of the start, one of which is always lost, too.
    void ForgetLog() {
        Settle();
        Board().ClearLog();
    }

    long SettledCountOf(const std::string& text) {
        Settle();
        return CountOf(text);
    }

    bool WaitForState(ControllerType controller, ThreadState state) {
        return Board().WaitUntil([&] {
            MessagingControl* router = MessageBase::GetMessagingControl();
            const ThreadControl* thread =
                router == nullptr ? nullptr : router->GetThreadByName(ControllerNames[controller]);
            return thread != nullptr && thread->GetState() == state;
        });
    }

    // A time stamp in nanoseconds of the board's wall clock.
    static std::int64_t StampAt(const Bytes& bytes, std::size_t offset) {
        return std::int64_t{NumberAt(bytes, offset)} * 1000000000 + NumberAt(bytes, offset + 4);
    }

    // Waits until the request is handled, and expects no answer to it. Needs the test state.
    static void SendUnanswered(const RawConnection& peer, const Bytes& request) {
        peer.Send(request);
        EXPECT_EQ(BehindStamp(Ask(peer, Frame(840))), Text("TEST_STATE"));
    }

    RawListener listener;
    RawListener frontEnd;  // lets the other link connect, so that only this link logs errors

private:
    int m_marks = 0;
};
