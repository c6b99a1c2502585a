#include "Frameworks/IPC/Networking/TCPClient.h"

#include <gmock/gmock.h>

#include "Tests/Support/LoggedTest.h"
#include "Tests/Support/RawPeer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// SO_LINGER of this process's socket that is connected to the port: seconds, or -1 if it is off or there is none.
int LingerOfSocketTo(int port) {
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 && ntohs(peer.sin_port) == port) {
            linger value{};
            socklen_t valueSize = sizeof value;
            EXPECT_EQ(getsockopt(descriptor, SOL_SOCKET, SO_LINGER, &value, &valueSize), 0);
            return value.l_onoff == 0 ? -1 : value.l_linger;
        }
    }
    return -1;
}

class TCPClients : public LoggedTest {
protected:
    ~TCPClients() override { TCPClient::SetInterfaceName("eth0"); }

    TCPClient client;
};

}  // namespace

TEST_F(TCPClients, keep_their_names) {
    client.SetLocalIPAddress("10.0.0.5");
    client.SetLocalName("analyzer");
    client.SetServerIPAddress("10.0.0.7");
    client.SetServerName("server");
    const TCPClient copy(client);
    EXPECT_EQ(copy.GetLocalIPAddress(), "10.0.0.5");
    EXPECT_EQ(copy.GetLocalName(), "analyzer");
    EXPECT_EQ(copy.GetServerIPAddress(), "10.0.0.7");
    EXPECT_EQ(copy.GetServerName(), "server");
}

TEST_F(TCPClients, share_the_name_of_one_network_interface) {
    EXPECT_EQ(TCPClient::GetInterfaceName(), "eth0");
    client.SetInterfaceName("lo");
    EXPECT_EQ(TCPClient::GetInterfaceName(), "lo");
}

TEST_F(TCPClients, connect_lingering_for_10_seconds) {
    const RawListener listener;
    client.SetServerIPAddress("127.0.0.1");
    EXPECT_FALSE(client.IsConnected());
    EXPECT_TRUE(client.Connect(listener.Port()));
    EXPECT_TRUE(client.IsConnected());
    const RawConnection peer = listener.Accept();
    EXPECT_EQ(LingerOfSocketTo(listener.Port()), 10);
    EXPECT_TRUE(client.SendString("x"));
    EXPECT_EQ(peer.Receive(1), Bytes{'x'});
    EXPECT_TRUE(client.CloseConnection());
    EXPECT_TRUE(peer.IsEnded());
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(TCPClients, send_nothing_before_they_are_connected) {
    CommunicationsCommand command;
    EXPECT_FALSE(client.Send(&command, nullptr));
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(TCPClients, send_on_a_copy_too) {
    const RawListener listener;
    client.SetServerIPAddress("127.0.0.1");
    EXPECT_TRUE(client.Connect(listener.Port()));
    const RawConnection peer = listener.Accept();
    TCPClient copy;
    copy = client;
    CommunicationsCommand command;
    EXPECT_TRUE(copy.Send(&command, nullptr));
    EXPECT_EQ(peer.Receive(32).size(), 32U);
}

TEST_F(TCPClients, closed_for_good_never_connect_again) {
    const RawListener listener;
    client.SetServerIPAddress("127.0.0.1");
    EXPECT_TRUE(client.CloseForGood());
    EXPECT_FALSE(client.Connect(listener.Port()));
    EXPECT_THAT(Lines(), ElementsAre("Socket::SetPortNumber Unable to create Socket",
                                     "Socket::SetLingerOnOff Failure in setsockopt SO_LINGER",
                                     "Socket::SetLingerSeconds Failure in setsockopt SO_LINGER",
                                     "TCPSocket::ConnectToServer  Unable to connect to server"));
}

// The loopback interface has an address of zeros.
TEST_F(TCPClients, give_a_hardware_address_as_six_bytes_or_as_text) {
    TCPClient::SetInterfaceName("lo");
    EXPECT_EQ(TCPClient::GetMACAddress(true), Bytes(6, 0));
    const std::string text("00:00:00:00:00:00\0", 18);
    EXPECT_EQ(TCPClient::GetMACAddress(false), Bytes(text.begin(), text.end()));
}

TEST_F(TCPClients, give_no_hardware_address_of_an_unknown_interface) {
    for (const char* name : {"", "none", "a name that no interface can have"}) {
        TCPClient::SetInterfaceName(name);
        EXPECT_THAT(TCPClient::GetMACAddress(true), IsEmpty()) << name;
        EXPECT_THAT(TCPClient::GetMACAddress(false), IsEmpty()) << name;
    }
    EXPECT_THAT(Lines(), ElementsAre());
}
