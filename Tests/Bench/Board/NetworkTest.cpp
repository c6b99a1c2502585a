#include <fcntl.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netdb.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/RawPeer.h"

namespace {

constexpr int Port = 1200;

// A socket of the program.
class Link {
public:
    Link() : m_file(socket(AF_INET, SOCK_STREAM, 0)) {}
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    ~Link() { close(m_file); }

    int File() const { return m_file; }

    // 0 or an error number.
    int Connect(int port, const char* host = "127.0.0.1") const {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = inet_addr(host);
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        return connect(m_file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? 0 : errno;
    }

    // What one recv gives, or "!" and the error number.
    std::string Receive(std::size_t most = 64) const {
        std::string text(most, '\0');
        const ssize_t got = recv(m_file, text.data(), most, 0);
        return got < 0 ? "!" + std::to_string(errno) : text.substr(0, static_cast<std::size_t>(got));
    }

private:
    const int m_file;
};

std::string Error(int error) { return "!" + std::to_string(error); }

std::string HostByName(const char* name) {
    const hostent* entry = gethostbyname(name);
    if (entry == nullptr) {
        return Error(h_errno);
    }
    in_addr address = {};
    std::memcpy(&address, entry->h_addr, sizeof(address));
    return std::string(entry->h_name) + " " + inet_ntoa(address);
}

std::string HostByAddress(const char* text) {
    const in_addr_t address = inet_addr(text);
    const hostent* entry = gethostbyaddr(&address, sizeof address, AF_INET);
    return entry == nullptr ? Error(h_errno) : entry->h_name;
}

std::string HostName(std::size_t size = 65) {
    std::string name(size, '#');
    return gethostname(name.data(), size) == 0 ? std::string(name.c_str()) : Error(errno) + name;
}

class NetworkTest : public BoardTest {
protected:
    void Set(const std::string& fault) const {
        std::string error;
        ASSERT_TRUE(Board().SetFault(fault, error)) << error;
    }

    // The link's other end.
    RawConnection ConnectTo(const Link& link, int port = Port) const {
        EXPECT_TRUE(Board().MapPort(port, m_listener.Port()));
        EXPECT_EQ(link.Connect(port), 0);
        return m_listener.Accept();
    }

    // What the program gets at once of that text, sent to it over a new link.
    std::string Passes(const std::string& text, int port = Port) const {
        const Link link;
        const RawConnection peer = ConnectTo(link, port);
        peer.Send(BytesOf(text));
        return link.Receive();
    }

    static Bytes BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

    const RawListener& Listener() const { return m_listener; }

private:
    RawListener m_listener;
};

TEST_F(NetworkTest, a_port_that_is_not_mapped_is_refused) {
    EXPECT_EQ(Link().Connect(Listener().Port()), ECONNREFUSED);
    EXPECT_EQ(Board().Trace(),
              std::vector<std::string>{"connect 127.0.0.1:" + std::to_string(Listener().Port()) + " !ECONNREFUSED"});
}

TEST_F(NetworkTest, a_mapped_port_leads_to_the_real_one) {
    const Link link;
    const RawConnection peer = ConnectTo(link);
    peer.Send(BytesOf("hello"));
    EXPECT_EQ(link.Receive(), "hello");
    EXPECT_EQ(send(link.File(), "yes", 3, 0), 3);
    EXPECT_EQ(peer.Receive(3), BytesOf("yes"));
    EXPECT_EQ(Board().Trace(), std::vector<std::string>{"connect 127.0.0.1:1200"});
    Board().UnmapPort(Port);
    EXPECT_EQ(Link().Connect(Port), ECONNREFUSED);
}

TEST_F(NetworkTest, a_port_can_be_mapped_again_and_sixteen_at_once) {
    ASSERT_TRUE(Board().MapPort(Port, 1));
    const Link link;
    ConnectTo(link);
    for (int port = 2; port <= 16; ++port) {
        EXPECT_TRUE(Board().MapPort(port, 1)) << port;
    }
    EXPECT_FALSE(Board().MapPort(17, 1));
    Board().UnmapPort(16);
    EXPECT_TRUE(Board().MapPort(17, 1));
}

TEST_F(NetworkTest, what_is_no_port_is_not_mapped) {
    for (const int port : {0, -1, 65536}) {
        EXPECT_FALSE(Board().MapPort(port, 1));
        EXPECT_FALSE(Board().MapPort(1, port));
        Board().UnmapPort(port);
    }
    EXPECT_TRUE(Board().MapPort(1, 65535));
}

TEST_F(NetworkTest, an_open_loopback_reaches_what_is_not_mapped) {
    Board().SetLoopbackOpen(true);
    EXPECT_EQ(Link().Connect(Listener().Port()), 0);
    Board().SetLoopbackOpen(false);
    EXPECT_EQ(Link().Connect(Listener().Port()), ECONNREFUSED);
}

TEST_F(NetworkTest, nothing_leaves_the_machine) {
    Board().SetLoopbackOpen(true);
    for (const char* host : {"192.0.2.1", "10.0.0.1", "255.255.255.255", "0.0.0.0"}) {
        EXPECT_EQ(Link().Connect(Listener().Port(), host), ENETUNREACH) << host;
    }
    EXPECT_EQ(Link().Connect(Listener().Port(), "127.0.0.2"), ECONNREFUSED);
}

TEST_F(NetworkTest, a_link_is_read_and_written_as_a_file_too) {
    const Link link;
    const RawConnection peer = ConnectTo(link);
    peer.Send(BytesOf("hello"));
    char text[8] = {};
    EXPECT_EQ(read(link.File(), text, sizeof text), 5);
    EXPECT_EQ(write(link.File(), "yes", 3), 3);
    EXPECT_EQ(peer.Receive(3), BytesOf("yes"));
    ASSERT_TRUE(Board().FailCall("read", 1, EIO));
    ASSERT_TRUE(Board().FailCall("write", 1, EIO));
    EXPECT_EQ(read(link.File(), text, sizeof text), -1);
    EXPECT_EQ(write(link.File(), "no", 2), -1);
}

TEST_F(NetworkTest, a_link_is_polled_by_the_machine_in_simulated_time) {
    Board().SetSpeed(100.0);
    const Link link;
    const RawConnection peer = ConnectTo(link);
    pollfd files{link.File(), POLLIN, 0};
    const double before = Board().Seconds();
    EXPECT_EQ(poll(&files, 1, 5000), 0);
    EXPECT_GE(Board().Seconds() - before, 5.0);
    peer.Send(BytesOf("x"));
    EXPECT_EQ(poll(&files, 1, -1), 1);
}

TEST_F(NetworkTest, closing_a_link_can_fail_and_closes_it) {
    const int file = socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_TRUE(Board().FailCall("close", 1, EIO));
    EXPECT_EQ(close(file), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(fcntl(file, F_GETFD), -1);
}

// It lives in this process.
TEST_F(NetworkTest, a_peer_is_not_on_the_board) {
    const Link link;
    const RawConnection peer = ConnectTo(link);
    for (const char* kind : {"send", "recv", "setsockopt", "getsockopt", "shutdown", "close"}) {
        ASSERT_TRUE(Board().FailCall(kind, 1, EIO));
    }
    peer.Send(BytesOf("x"));
    EXPECT_EQ(send(link.File(), "y", 1, 0), -1);
    EXPECT_EQ(send(link.File(), "y", 1, 0), 1);
    EXPECT_EQ(peer.Receive(1), BytesOf("y"));
    EXPECT_EQ(link.Receive(), Error(EIO));
    EXPECT_EQ(link.Receive(), "x");
}

TEST_F(NetworkTest, a_socket_that_is_bound_is_a_peers) {
    { const RawListener other; }
    EXPECT_EQ(Board().CallCount("close"), 0U);
}

TEST_F(NetworkTest, a_link_can_be_set_not_to_block) {
    const Link link;
    const RawConnection peer = ConnectTo(link);
    int on = 1;
    EXPECT_EQ(ioctl(link.File(), FIONBIO, &on), 0);
    EXPECT_EQ(link.Receive(), Error(EAGAIN));
    ASSERT_TRUE(Board().FailCall("ioctl", 1, EIO));
    EXPECT_EQ(ioctl(link.File(), FIONBIO, &on), -1);
}

TEST_F(NetworkTest, the_hosts_are_the_boards_own) {
    EXPECT_EQ(HostName(), "analyzer");
    EXPECT_EQ(HostByName("localhost"), "localhost 127.0.0.1");
    EXPECT_EQ(HostByName("analyzer"), "analyzer 127.0.0.1");
    EXPECT_EQ(HostByName("LocalHost"), "localhost 127.0.0.1");
    EXPECT_EQ(HostByName("192.0.2.1"), "192.0.2.1 192.0.2.1");
    EXPECT_EQ(HostByName("example.com"), Error(HOST_NOT_FOUND));
    EXPECT_EQ(HostByName(""), Error(HOST_NOT_FOUND));
    EXPECT_EQ(HostByAddress("127.0.0.1"), "localhost");
    EXPECT_EQ(HostByAddress("192.0.2.1"), Error(HOST_NOT_FOUND));
    EXPECT_EQ(HostByAddress("no address"), Error(HOST_NOT_FOUND));
}

TEST_F(NetworkTest, the_hosts_come_one_after_the_other) {
    const auto next = [] {
        const hostent* entry = gethostent();
        return entry == nullptr ? "" : std::string(entry->h_name);
    };
    sethostent(1);
    EXPECT_EQ(next(), "localhost");
    EXPECT_EQ(next(), "analyzer");
    EXPECT_EQ(next(), "");
    EXPECT_EQ(next(), "");
    sethostent(1);
    EXPECT_EQ(next(), "localhost");
    endhostent();
    EXPECT_EQ(next(), "localhost");
}

TEST_F(NetworkTest, the_board_can_have_another_name_or_none) {
    Board().SetHostName("bench-2");
    EXPECT_EQ(HostName(), "bench-2");
    EXPECT_EQ(HostByName("bench-2"), "bench-2 127.0.0.1");
    EXPECT_EQ(HostByName("analyzer"), Error(HOST_NOT_FOUND));
    EXPECT_EQ(HostName(8), "bench-2");
    EXPECT_EQ(HostName(7), Error(ENAMETOOLONG) + "bench-2");
    Board().SetHostName("");
    EXPECT_EQ(HostName(), "");
    EXPECT_EQ(HostByName(""), Error(HOST_NOT_FOUND));
    Board().SetHostName(std::string(100, 'n'));
    EXPECT_EQ(HostName(), std::string(64, 'n'));
}

TEST_F(NetworkTest, each_interface_has_its_hardware_address) {
    const int file = socket(AF_INET, SOCK_DGRAM, 0);
    const auto ask = [file](const std::string& name, ifreq& request) {
        request = {};
        std::copy(name.begin(), name.end(), request.ifr_name);
        return ioctl(file, SIOCGIFHWADDR, &request) == 0 ? 0 : errno;
    };
    ifreq request{};
    EXPECT_EQ(ask("eth0", request), 0);
    EXPECT_EQ(request.ifr_hwaddr.sa_family, ARPHRD_ETHER);
    EXPECT_EQ(std::string(request.ifr_hwaddr.sa_data, 6), std::string("\x02\x1A\x6C\x00\x3E\xF5", 6));
    EXPECT_EQ(ask("lo", request), 0);
    EXPECT_EQ(std::string(request.ifr_hwaddr.sa_data, 6), std::string(6, '\0'));
    EXPECT_EQ(ask("eth1", request), ENODEV);
    EXPECT_EQ(ask("", request), ENODEV);
    EXPECT_EQ(ask(std::string(IFNAMSIZ, 'e'), request), ENODEV);
    close(file);
}

TEST_F(NetworkTest, link_cut) {
    Set("link-cut=7");
    const Link link;
    const RawConnection peer = ConnectTo(link);
    peer.Send(BytesOf("frame-1frame-2"));
    EXPECT_EQ(link.Receive(4), "fram");
    EXPECT_EQ(link.Receive(), "e-1");
    EXPECT_TRUE(peer.IsEnded());
    EXPECT_EQ(link.Receive(), Error(ECONNRESET));
    EXPECT_EQ(send(link.File(), "x", 1, MSG_NOSIGNAL), -1);
    EXPECT_EQ(errno, EPIPE);
}

TEST_F(NetworkTest, a_cut_fails_the_next_call) {
    Set("link-cut=3,1200");
    const Link link;
    const RawConnection peer = ConnectTo(link);
    peer.Send(BytesOf("frame"));
    EXPECT_EQ(link.Receive(), "fra");
    EXPECT_EQ(write(link.File(), "x", 1), -1);
    EXPECT_EQ(errno, ECONNRESET);
}

TEST_F(NetworkTest, each_new_link_is_cut_until_the_fault_is_cleared) {
    Set("link-cut=0");
    for (int i = 0; i < 2; ++i) {
        const Link link;
        const RawConnection peer = ConnectTo(link);
        EXPECT_EQ(link.Receive(), Error(ECONNRESET));
    }
    std::string error;
    ASSERT_TRUE(Board().ClearFault("link-cut", error));
    EXPECT_EQ(Passes("whole"), "whole");
}

TEST_F(NetworkTest, a_link_to_another_port_is_not_cut) {
    Set("link-cut=1,3111");
    EXPECT_EQ(Passes("whole"), "whole");
    EXPECT_EQ(Passes("whole", 3111), "w");
}

TEST_F(NetworkTest, an_unattached_process_has_the_machines_network) {
    Bench::DetachThisProcess();
    {
        const Link link;
        EXPECT_EQ(link.Connect(Listener().Port()), 0);
        EXPECT_NE(HostName(), "");
    }
    Bench::AttachThisProcess(Board());
}

}  // namespace
