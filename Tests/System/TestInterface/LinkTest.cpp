// The link to the test server: how it connects, ends and connects again, and what it withstands.
#include <gmock/gmock.h>

#include <random>

#include "Tests/Support/RandomSeed.h"
#include "Tests/System/TestInterface/LinkFixture.h"

namespace {

constexpr char Exiting[] = "ReceiverThread::Exit() Ethernet Receiver Thread Exiting";
constexpr char Disconnected[] = "TCPSocket::RecieveCommand  Server Disconnected";
constexpr char NotConnected[] = "TCPSocket::ConnectToServer  Unable to connect to server";
constexpr char InTest[] = "Changing to TEST_STATE State for - TestInterface";

class TestLink : public LinkOnBoard {
protected:
    static bool Answers(const RawConnection& peer) { return BehindStamp(Ask(peer, Frame(840))) == Text("TEST_STATE"); }
};

}  // namespace

TEST_F(TestLink, is_made_in_the_test_state) {
    const RawConnection peer = Connect();
    EXPECT_TRUE(Answers(peer));
}

TEST_F(TestLink, is_not_made_before_it) {
    StartIdle();
    Send(MOVE_TO_RUNNING);
    EXPECT_TRUE(WaitForState(TEST_INTERFACE, RUNNING_STATE));
    EXPECT_EQ(SettledCountOf("Sending Command - MOVE_TO_TEST"), 0);
    EXPECT_EQ(SettledCountOf(NotConnected), 0);
}

TEST_F(TestLink, is_made_to_the_port_of_the_settings) {
    Board().UnmapPort(1200);
    EXPECT_TRUE(Board().MapPort(4711, listener.Port()));
    configuration.Set("TestServerPortNumber", "4711");
    const RawConnection peer = Connect();
    EXPECT_TRUE(Answers(peer));
    EXPECT_TRUE(Board().WaitForTrace("connect 127.0.0.1:4711"));
}

TEST_F(TestLink, is_made_without_any_setting_of_its_own) {
    for (const char* key : {"TestServerIPAddress", "TestServerName", "TestServerPortNumber", "ConnectionRetryCount",
                            "ConnectionRetryWaitPeriod", "EthernetInterfaceName", "StartInTestMode"}) {
        configuration.Remove(key);
    }
    StartIdle();
    const double start = Board().Seconds();
    Send(MOVE_TO_TEST);
    const RawConnection peer = listener.Accept();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(30300))), Text("02:1A:6C:00:3E:F5"));
    EXPECT_GE(Board().Seconds() - start, 3.0);
}

TEST_F(TestLink, is_made_once_if_the_settings_ask_for_the_test_state) {
    configuration.Set("StartInTestMode", "true");
    StartIdle();
    EXPECT_EQ(SettledCountOf("Sending Command - MOVE_TO_TEST"), 0);
    Send(MOVE_TO_RUNNING);
    {
        const RawConnection peer = listener.Accept();
        EXPECT_TRUE(Answers(peer));
        EXPECT_EQ(BehindStamp(Ask(peer, Frame(830))), Text("RUNNING_STATE"));
        EXPECT_TRUE(peer.IsEnded());
    }
    WaitFor("Changing to RUNNING_STATE State for - TestInterface", 2);
    EXPECT_EQ(SettledCountOf("Sending Command - MOVE_TO_TEST"), 1);
}

TEST_F(TestLink, logs_its_start_and_its_end) {
    {
        const RawConnection peer = Connect();
        EXPECT_TRUE(Answers(peer));
        Reset();
    }
    for (const char* line : {"Gathering Configuration Information for - TestInterface",
                             "Killing Thread for - TestInterface_ReceiverThread", Exiting}) {
        EXPECT_EQ(CountOf(line), 1) << line;
    }
}

TEST_F(TestLink, that_was_closed_is_made_again) {
    {
        const RawConnection peer = Connect();
        EXPECT_TRUE(Answers(peer));
    }
    const RawConnection again = listener.Accept();
    EXPECT_TRUE(Answers(again));
    EXPECT_EQ(SettledCountOf(Disconnected), 1);
    EXPECT_EQ(SettledCountOf(Exiting), 1);
    EXPECT_EQ(SettledCountOf("TestInterface::ProcessCommandMessage  Unable to transistion into \"TEST_STATE\""), 0);
}

TEST_F(TestLink, that_broke_is_made_again) {
    RawConnection peer = Connect();
    EXPECT_TRUE(Answers(peer));
    peer.Abort();
    const RawConnection again = listener.Accept();
    EXPECT_TRUE(Answers(again));
}

TEST_F(TestLink, is_tried_again_while_no_server_listens) {
    Board().UnmapPort(1200);
    StartIdle();
    const double start = Board().Seconds();
    Send(MOVE_TO_TEST);
    WaitFor(NotConnected, 3);
    EXPECT_GE(Board().Seconds() - start, 6.0);  // 3 s after each of two
    WaitFor(Exiting, 2);
}

TEST_F(TestLink, is_tried_as_often_as_the_settings_say) {
    Board().UnmapPort(1200);
    configuration.Set("ConnectionRetryCount", "3").Set("ConnectionRetryWaitPeriod", "5");
    StartIdle();
    Send(MOVE_TO_TEST);
    WaitFor(Exiting);
    const std::vector<std::string> lines = Lines();
    const auto end = std::find(lines.begin(), lines.end(), Exiting);
    EXPECT_EQ(std::count(lines.begin(), end, NotConnected), 3);
    // The socket of the attempt before was never connected.
    EXPECT_EQ(std::count(lines.begin(), end, "Socket::CloseConnection Failure Shutting down socket"), 2);
}

TEST_F(TestLink, is_tried_once_without_a_retry_count) {
    Board().UnmapPort(1200);
    configuration.Remove("ConnectionRetryCount");
    StartIdle();
    Send(MOVE_TO_TEST);
    WaitFor(Exiting);
    const std::vector<std::string> lines = Lines();
    EXPECT_EQ(std::count(lines.begin(), std::find(lines.begin(), lines.end(), Exiting), NotConnected), 1);
}

// No pause if the settings give neither attempts nor a wait: the receiver ends and is created again at once.
TEST_F(TestLink, without_attempts_starts_again_without_pause) {
    configuration.Set("ConnectionRetryCount", "0");
    StartIdle();
    Send(MOVE_TO_TEST);
    WaitFor(Exiting, 20);
    EXPECT_EQ(CountOf(NotConnected), 0);
}

TEST_F(TestLink, reads_its_first_frame_after_the_wait_that_follows_each_attempt) {
    configuration.Set("ConnectionRetryWaitPeriod", "30");
    StartIdle();
    const double start = Board().Seconds();
    Send(MOVE_TO_TEST);
    const RawConnection peer = listener.Accept();
    EXPECT_TRUE(Answers(peer));
    EXPECT_GE(Board().Seconds() - start, 30.0);
}

TEST_F(TestLink, ends_at_once_in_the_middle_of_the_wait_between_attempts) {
    configuration.Set("ConnectionRetryCount", "1000000").Set("ConnectionRetryWaitPeriod", "1000000");
    StartIdle();
    Send(MOVE_TO_TEST);
    const RawConnection peer = listener.Accept();
    Reset();
    EXPECT_EQ(CountOf(Exiting), 1);
}

TEST_F(TestLink, stays_in_other_states_and_takes_no_command_in_them) {
    const RawConnection peer = Connect();
    EXPECT_TRUE(Answers(peer));
    Send(MOVE_TO_IDLE);
    EXPECT_TRUE(WaitForState(TEST_INTERFACE, IDLE_STATE));
    peer.Send(Frame(30100));  // dropped
    peer.Send(Frame(999));    // read once the one before is gone
    WaitFor("Data Message (TEST_COMMAND_DATA_MESSAGE) : From - TestInterface : To - TestInterface", 3);
    Send(MOVE_TO_TEST);
    WaitFor(InTest, 2);
    EXPECT_TRUE(Answers(peer));
}

// Outside the test state the end of the link is dropped like its other messages, so that the receiver seems to exist:
// only a reset helps.
TEST_F(TestLink, lost_outside_the_test_state_needs_a_reset) {
    {
        const RawConnection peer = Connect();
        EXPECT_TRUE(Answers(peer));
        Send(MOVE_TO_IDLE);
        EXPECT_TRUE(WaitForState(TEST_INTERFACE, IDLE_STATE));
    }
    WaitFor(Exiting);
    Settle();
    Board().ClearLog();
    Send(MOVE_TO_TEST);
    WaitFor(InTest);
    const double start = Board().Seconds();
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > start + 20.0; }));
    EXPECT_EQ(SettledCountOf(Exiting), 0);
    Reset();
    const RawConnection peer = Connect();
    EXPECT_TRUE(Answers(peer));
}

// A move without a period applies until a move with one.
TEST_F(TestLink, closed_by_a_move_for_good_is_made_once_more) {
    {
        const RawConnection peer = Connect();
        EXPECT_EQ(BehindStamp(Ask(peer, Frame(820))), Text("IDLE_STATE"));
        EXPECT_TRUE(peer.IsEnded());
    }
    EXPECT_TRUE(WaitForState(TEST_INTERFACE, IDLE_STATE));
    Send(MOVE_TO_TEST);
    {
        const RawConnection peer = listener.Accept();
        EXPECT_TRUE(Answers(peer));
    }
    WaitFor(Exiting, 2);
    const double start = Board().Seconds();
    EXPECT_TRUE(Board().WaitUntil([&] { return Board().Seconds() > start + 20.0; }));
    EXPECT_EQ(SettledCountOf(Exiting), 2);
    Send(MOVE_TO_IDLE);
    EXPECT_TRUE(WaitForState(TEST_INTERFACE, IDLE_STATE));
    Send(MOVE_TO_TEST);
    const RawConnection peer = listener.Accept();
    EXPECT_TRUE(Answers(peer));
}

// The end of the first link is still queued when the second is connected.
TEST_F(TestLink, survives_quick_moves_in_and_out) {
    const RawConnection first = Connect();
    ForgetLog();
    EXPECT_EQ(BehindStamp(Ask(first, Frame(820))), Text("IDLE_STATE"));  // from here on every move closes it
    WaitFor("Changing to IDLE_STATE State for - TestInterface");
    for (int round = 0; round < 10; ++round) {
        Send(MOVE_TO_TEST);
        Send(MOVE_TO_IDLE);
    }
    Send(MOVE_TO_TEST);
    WaitFor(InTest, 11);
    // Those before the last have been closed.
    bool isAnswered = false;
    for (int attempt = 0; attempt < 11 && !isAnswered; ++attempt) {
        const RawConnection peer = listener.Accept();
        peer.Send(Frame(840));
        isAnswered = !peer.Receive(32).empty();
    }
    EXPECT_TRUE(isAnswered);
}

TEST_F(TestLink, ends_in_a_reset_while_it_waits_for_a_frame) {
    for (int round = 0; round < 5; ++round) {
        const RawConnection peer = Connect();
        Reset();
        EXPECT_TRUE(peer.IsEnded());
    }
}

// The answers fill every buffer on the way, so that the controller blocks in sending: closing the link ends that.
TEST_F(TestLink, ends_in_a_reset_although_the_server_reads_none_of_its_answers) {
    const RawConnection peer = Connect();
    peer.Send(Frame(30200).Write(std::string(3000, 'x')));
    for (int round = 0; round < 5000; ++round) {
        peer.Send(Frame(30200));
    }
    Reset();
}

TEST_F(TestLink, takes_a_count_as_no_payload_if_nothing_is_written) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(840).Count(5))), Text("TEST_STATE"));
    EXPECT_TRUE(Answers(peer));
}

TEST_F(TestLink, expects_no_payload_of_length_zero) {
    const RawConnection peer = Connect();
    EXPECT_EQ(BehindStamp(Ask(peer, Frame(840).Flags(1))), Text("TEST_STATE"));
    EXPECT_TRUE(Answers(peer));
}

TEST_F(TestLink, takes_a_header_cut_in_two_as_two_frames) {
    const RawConnection peer = Connect();
    EXPECT_TRUE(Answers(peer));
    const Bytes whole = Frame(840);
    peer.Send({whole.begin(), whole.begin() + 13});  // command 72, all else 0
    WaitFor("Data Message (TEST_COMMAND_DATA_MESSAGE) : From - TestInterface : To - TestInterface", 2);
    peer.Send({whole.begin() + 13, whole.end()});  // 3 as the first byte of the source
    WaitFor("Data Message (TEST_COMMAND_DATA_MESSAGE) : From - TestInterface : To - TestInterface", 3);
    EXPECT_TRUE(Answers(peer));
}

TEST_F(TestLink, fills_a_payload_that_was_cut_short_with_zeros) {
    const RawConnection peer = Connect();
    Bytes cut = Frame(30200).Write("CL-9");
    cut.resize(32 + 2);
    EXPECT_EQ(BehindStamp(Ask(peer, cut)), Text(std::string("CL\0\0", 4)));
    EXPECT_TRUE(Answers(peer));
}

TEST_F(TestLink, withstands_the_maximum_length_with_hardly_a_byte_after_it) {
    const RawConnection peer = Connect();
    Bytes frame = Frame(30200).Flags(1).Count(0xFFFFFF);
    frame.push_back('x');
    peer.Send(frame);
    const Bytes header = peer.Receive(32);
    ASSERT_EQ(header.size(), 32U);
    // Stamp, text, zero byte and checksum are more than the length can say: it has the low 24 bits.
    const std::size_t size = 8 + 0xFFFFFF + 1 + 4;
    EXPECT_EQ(NumberAt(header, 14, 3), size & 0xFFFFFFU);
    Bytes data = peer.Receive(size);
    ASSERT_EQ(data.size(), size);
    const std::uint32_t checksum = NumberAt(data, size - 4);
    data.resize(size - 4);
    EXPECT_EQ(checksum, ChecksumOf(data));
    EXPECT_EQ(data[8], 'x');
    EXPECT_EQ(std::count(data.begin() + 9, data.end(), 0), 0xFFFFFF);
    EXPECT_TRUE(Answers(peer));
}

TEST_F(TestLink, survives_a_server_that_closes_at_any_byte) {
    StartIdle();
    Send(MOVE_TO_TEST);
    const Bytes whole = Frame(30200).Write("CL-9");
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const RawConnection peer = listener.Accept();
        if (size > 0) {
            peer.Send({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
        }
    }
    const RawConnection peer = listener.Accept();
    EXPECT_TRUE(Answers(peer));
}

TEST_F(TestLink, survives_random_bytes) {
    const unsigned seed = RandomSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    StartIdle();
    Send(MOVE_TO_TEST);
    for (int round = 0; round < 20; ++round) {
        const RawConnection peer = listener.Accept();
        for (int part = 0; part < 10; ++part) {
            Bytes bytes(1 + random() % 100);
            for (std::uint8_t& byte : bytes) {
                byte = static_cast<std::uint8_t>(random());
            }
            bytes[std::min<std::size_t>(13, bytes.size() - 1)] |=
                0x80;  // makes a command that moves the state unlikely
            peer.Send(bytes);
        }
    }
    const RawConnection peer = listener.Accept();
    EXPECT_TRUE(Answers(peer));
}
