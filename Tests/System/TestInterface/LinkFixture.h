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

    // Everyone idle, and the front end's link has set the name of the interface, which all links share: from then on
    // the one of the test link stands.
    void StartIdle() {
        TCPClient::SetInterfaceName("nobody's");
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

    // Whatever was logged before is in the log.
    void Settle() {
        const std::string mark = "all of it, " + std::to_string(m_marks++);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
        WaitFor(mark);
    }

    // Lines from before are gone, the first of the start among them, one of which is always lost.
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

    // Nanoseconds of the board's wall clock that a time stamp stands for.
    static std::int64_t StampAt(const Bytes& bytes, std::size_t offset) {
        return std::int64_t{NumberAt(bytes, offset)} * 1000000000 + NumberAt(bytes, offset + 4);
    }

    // All that the request caused has been worked on, and nothing was answered to it. Needs the test state.
    static void SendUnanswered(const RawConnection& peer, const Bytes& request) {
        peer.Send(request);
        EXPECT_EQ(BehindStamp(Ask(peer, Frame(840))), Text("TEST_STATE"));
    }

    RawListener listener;
    RawListener frontEnd;  // it lets the other link connect, so that this one alone complains

private:
    int m_marks = 0;
};
