#include "Frameworks/IPC/Networking/TCPSocket.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>

#include <thread>

#include "Tests/Support/LoggedTest.h"
#include "Tests/Support/RawPeer.h"

namespace {

using testing::ElementsAre;

Bytes ImageOf(const CommunicationsCommand& command) { return {command.GetImage().begin(), command.GetImage().end()}; }

// Connected before the test begins.
class TCPSockets : public LoggedTest {
protected:
    TCPSocket Connected() const {
        TCPSocket fresh(listener.Port());
        EXPECT_TRUE(fresh.ConnectToServer("127.0.0.1", 1));
        return fresh;
    }

    RawListener listener;
    TCPSocket socket = Connected();
    RawConnection peer = listener.Accept();
};

class UnconnectedTCPSockets : public LoggedTest {};

}  // namespace

TEST_F(UnconnectedTCPSockets, say_so) {
    const TCPSocket socket;
    EXPECT_FALSE(socket.IsConnected());
}

TEST_F(UnconnectedTCPSockets, report_that_no_server_listens) {
    std::uint16_t port = 0;
    {
        const RawListener gone;
        port = gone.Port();
    }
    TCPSocket socket(port);
    EXPECT_FALSE(socket.ConnectToServer("127.0.0.1", 1));
    EXPECT_FALSE(socket.IsConnected());
    EXPECT_THAT(Lines(), ElementsAre("TCPSocket::ConnectToServer  Unable to connect to server"));
}

TEST_F(UnconnectedTCPSockets, can_neither_read_nor_write) {
    TCPSocket socket;
    CommunicationsCommand command;
    PayloadContainer payload;
    EXPECT_EQ(socket.RecieveCommand(), nullptr);
    EXPECT_EQ(socket.RecievePayload(1), nullptr);
    EXPECT_EQ(socket.ReceiveString(), "NULL");
    EXPECT_FALSE(socket.SendCommand(&command));
    EXPECT_FALSE(socket.SendPayload(&payload));
    EXPECT_FALSE(socket.SendString("text"));
    EXPECT_THAT(Lines(), ElementsAre("TCPSocket::RecieveCommand  Error in receiving header information",
                                     "TCPSocket::RecievePayload  Error in receiving payload information",
                                     "TCpSocket::ReceiveString Error in receiving String",
                                     "TCPSocket::SendCommand  Error in sending header information",
                                     "TCPSocket::SendPayload  Error in sending payload information",
                                     "TCPSocket::SendCommand Error in sending header information"));
}

TEST_F(TCPSockets, are_connected_until_the_next_attempt_also_once_closed) {
    EXPECT_TRUE(socket.IsConnected());
    const TCPSocket copy(socket);
    EXPECT_TRUE(copy.IsConnected());
    socket.CloseConnection();
    EXPECT_TRUE(socket.IsConnected());
    EXPECT_FALSE(socket.ConnectToServer("127.0.0.1", 1));
    EXPECT_FALSE(socket.IsConnected());
    EXPECT_TRUE(copy.IsConnected());
}

TEST_F(TCPSockets, receive_a_header) {
    Bytes header(32);
    for (std::size_t at = 0; at < header.size(); ++at) {
        header[at] = static_cast<std::uint8_t>(at + 1);
    }
    peer.Send(header);
    const std::unique_ptr<CommunicationsCommand> command = socket.RecieveCommand();
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(ImageOf(*command), header);
}

TEST_F(TCPSockets, take_a_short_header) {
    peer.Send({0x11, 0x22, 0x33});
    const std::unique_ptr<CommunicationsCommand> command = socket.RecieveCommand();
    ASSERT_NE(command, nullptr);
    Bytes expected = {0x11, 0x22, 0x33};
    expected.resize(32);
    EXPECT_EQ(ImageOf(*command), expected);
}

TEST_F(TCPSockets, report_a_closed_server_as_information) {
    peer.EndSending();
    EXPECT_EQ(socket.RecieveCommand(), nullptr);
    EXPECT_THAT(Lines(), ElementsAre("TCPSocket::RecieveCommand  Server Disconnected level 6"));
}

TEST_F(TCPSockets, report_a_broken_connection_as_an_error) {
    peer.Abort();
    EXPECT_EQ(socket.RecieveCommand(), nullptr);
    EXPECT_THAT(Lines(), ElementsAre("TCPSocket::RecieveCommand  Error in receiving header information"));
}

TEST_F(TCPSockets, receive_a_payload_with_its_crc) {
    peer.Send({'a', 'b', 'c', 0xC2, 0x41, 0x24, 0x35});
    const std::unique_ptr<PayloadContainer> payload = socket.RecievePayload(3);
    ASSERT_NE(payload, nullptr);
    EXPECT_EQ(payload->GetLength(), 3U);
    EXPECT_EQ(payload->Text(), "abc");
    EXPECT_TRUE(payload->VerifyCRC());
}

TEST_F(TCPSockets, leave_the_second_part_of_a_payload_to_the_next_read) {
    peer.Send({'a', 'b'});
    const std::unique_ptr<PayloadContainer> payload = socket.RecievePayload(4);
    ASSERT_NE(payload, nullptr);
    EXPECT_EQ(payload->DataForm(), (Bytes{'a', 'b', 0, 0}));
    peer.Send({'c', 'd', 1, 2, 3, 4});
    const std::unique_ptr<CommunicationsCommand> rest = socket.RecieveCommand();
    ASSERT_NE(rest, nullptr);
    Bytes expected = {'c', 'd', 1, 2, 3, 4};
    expected.resize(32);
    EXPECT_EQ(ImageOf(*rest), expected);
}

TEST_F(TCPSockets, give_a_payload_of_zeros_if_the_server_closed_before_it) {
    peer.EndSending();
    const std::unique_ptr<PayloadContainer> payload = socket.RecievePayload(4);
    ASSERT_NE(payload, nullptr);
    EXPECT_EQ(payload->DataForm(), Bytes(4, 0));
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(TCPSockets, take_no_memory_for_a_payload_that_does_not_arrive) {
    peer.Send({'x'});
    const std::unique_ptr<PayloadContainer> payload = socket.RecievePayload(0xFFFFFF);
    ASSERT_NE(payload, nullptr);
    EXPECT_EQ(payload->GetLength(), 0xFFFFFFU);
    EXPECT_EQ(payload->DataForm().size(), 0xFFFFFFU);
}

TEST_F(TCPSockets, receive_a_text_up_to_its_zero_byte) {
    peer.Send({'1', '~', 'a', 0, 'b'});
    EXPECT_EQ(socket.ReceiveString(), "1~a");
}

TEST_F(TCPSockets, receive_at_most_1024_bytes_of_text) {
    peer.Send(Bytes(1500, 'x'));
    Bytes seen(1500);
    EXPECT_TRUE(recv(socket.GetDescriptor(), seen.data(), seen.size(), MSG_PEEK | MSG_WAITALL) == 1500);
    EXPECT_EQ(socket.ReceiveString().Text(), std::string(1024, 'x'));
    EXPECT_EQ(socket.ReceiveString().Text(), std::string(476, 'x'));
}

TEST_F(TCPSockets, give_an_empty_text_at_the_end_of_the_connection) {
    peer.EndSending();
    EXPECT_EQ(socket.ReceiveString(), "");
    EXPECT_EQ(socket.ReceiveString(), "");
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(TCPSockets, send_a_text_unchanged) {
    EXPECT_TRUE(socket.SendString("Name~Value`"));
    EXPECT_EQ(peer.Receive(11), (Bytes{'N', 'a', 'm', 'e', '~', 'V', 'a', 'l', 'u', 'e', '`'}));
}

TEST_F(TCPSockets, send_a_header_then_the_payload_with_its_crc) {
    CommunicationsCommand command;
    command.Clear();
    command.SetLength(7);
    PayloadContainer payload(3);
    payload.SetReceived({'a', 'b', 'c'});
    payload.DataForm();
    EXPECT_TRUE(socket.Send(&command, &payload));
    Bytes expected(32, 0);
    expected[14] = 7;
    const Bytes behind = {0x61, 0x62, 0x63, 0xC2, 0x41, 0x24, 0x35};
    expected.insert(expected.end(), behind.begin(), behind.end());
    EXPECT_EQ(peer.Receive(39), expected);
}

TEST_F(TCPSockets, send_no_header_that_is_none_and_no_payload_that_is_none) {
    CommunicationsCommand command;
    PayloadContainer payload;
    EXPECT_FALSE(socket.SendCommand(nullptr));
    EXPECT_TRUE(socket.SendPayload(nullptr));
    EXPECT_TRUE(socket.Send(&command, nullptr));
    EXPECT_FALSE(socket.Send(nullptr, nullptr));
    EXPECT_FALSE(socket.Send(nullptr, &payload));
    EXPECT_EQ(peer.Receive(32), ImageOf(command));
    EXPECT_EQ(peer.Receive(4), Bytes(4, 0));  // the payload is still sent
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(TCPSockets, report_a_closed_server_and_continue) {
    peer.Abort();
    EXPECT_EQ(socket.RecieveCommand(), nullptr);  // the connection is aborted
    CommunicationsCommand command;
    PayloadContainer payload;
    EXPECT_FALSE(socket.SendCommand(&command));
    EXPECT_FALSE(socket.SendPayload(&payload));
    EXPECT_THAT(Lines(), ElementsAre("TCPSocket::RecieveCommand  Error in receiving header information",
                                     "TCPSocket::SendCommand  Error in sending header information",
                                     "TCPSocket::SendPayload  Error in sending payload information"));
}

TEST_F(TCPSockets, end_the_process_when_a_text_is_sent_to_a_closed_server) {
    peer.Abort();
    EXPECT_EQ(socket.RecieveCommand(), nullptr);
    EXPECT_EXIT(socket.SendString("x"), testing::KilledBySignal(SIGPIPE), "");
}

TEST_F(TCPSockets, wake_a_reader_when_another_thread_closes_them) {
    for (int round = 0; round < 50; ++round) {
        TCPSocket fresh = Connected();
        const RawConnection other = listener.Accept();
        std::thread reader([&] { EXPECT_EQ(fresh.RecieveCommand(), nullptr); });
        fresh.CloseConnection();
        reader.join();
        EXPECT_TRUE(other.IsEnded());
    }
}

// The next opened file gets the number of a closed socket.
TEST_F(TCPSockets, never_write_to_a_file_that_got_the_number_of_a_closed_one) {
    TCPSocket copy(socket);
    const int number = socket.GetDescriptor();
    socket.CloseConnection();
    const int file = memfd_create("file", 0);
    const int same = file == number ? file : dup2(file, number);
    EXPECT_FALSE(copy.SendString("text"));
    EXPECT_FALSE(copy.CloseConnection() && copy.GetDescriptor() != -1);
    EXPECT_EQ(lseek(same, 0, SEEK_END), 0);
    EXPECT_NE(fcntl(same, F_GETFD), -1);
    close(same);
    if (file != same) {
        close(file);
    }
}

TEST_F(TCPSockets, close_without_a_report_after_the_server_shut_down) {
    peer.EndSending();
    EXPECT_EQ(socket.RecieveCommand(), nullptr);
    EXPECT_TRUE(socket.CloseConnection());
    EXPECT_THAT(Lines(), ElementsAre("TCPSocket::RecieveCommand  Server Disconnected level 6"));
}
