#include "Frameworks/IPC/Networking/Socket.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include "Frameworks/IPC/Networking/TCPSocket.h"
#include "Tests/Support/LoggedTest.h"

namespace {

using testing::ElementsAre;

class Sockets : public LoggedTest {};

// No descriptor is available while one of these exists.
class NoDescriptors {
public:
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit none = m_before;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }

private:
    rlimit m_before{};
};

bool IsOpen(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

bool Blocks(const Socket& socket) { return (fcntl(socket.GetDescriptor(), F_GETFL) & O_NONBLOCK) == 0; }

}  // namespace

TEST_F(Sockets, start_closed_without_a_port_and_blocking) {
    const Socket socket;
    EXPECT_EQ(socket.GetPortNumber(), -1);
    EXPECT_EQ(socket.GetDescriptor(), -1);
    EXPECT_EQ(socket.GetBlocking(), 1);
    EXPECT_EQ(socket.GetAddress().sin_family, AF_INET);
    EXPECT_EQ(socket.GetAddress().sin_addr.s_addr, htonl(INADDR_ANY));
}

TEST_F(Sockets, open_for_a_port) {
    const Socket socket(1200);
    EXPECT_EQ(socket.GetPortNumber(), 1200);
    EXPECT_TRUE(IsOpen(socket.GetDescriptor()));
    EXPECT_EQ(socket.GetAddress().sin_port, htons(1200));
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(Sockets, close_what_was_open_for_another_port) {
    Socket socket(1200);
    const int reserve = dup(socket.GetDescriptor());  // so that the next number differs
    const int before = socket.GetDescriptor();
    const int other = dup(0);
    EXPECT_TRUE(socket.SetPortNumber(1201));
    EXPECT_EQ(socket.GetPortNumber(), 1201);
    EXPECT_TRUE(IsOpen(socket.GetDescriptor()));
    EXPECT_TRUE(before == socket.GetDescriptor() || !IsOpen(before));
    close(reserve);
    close(other);
    // An unconnected socket can't be shut down.
    EXPECT_THAT(Lines(), ElementsAre("Socket::CloseConnection Failure Shutting down socket"));
}

TEST_F(Sockets, say_that_none_can_be_created) {
    Socket socket;
    {
        const NoDescriptors none;
        EXPECT_FALSE(socket.SetPortNumber(1200));
    }
    EXPECT_EQ(socket.GetDescriptor(), -1);
    EXPECT_EQ(socket.GetPortNumber(), 1200);
    EXPECT_THAT(Lines(), ElementsAre("Socket::SetPortNumber Unable to create Socket"));
}

TEST_F(Sockets, set_and_get_their_options) {
    Socket socket(1200);
    EXPECT_TRUE(socket.SetReuseAddr(true));
    EXPECT_NE(socket.GetReuseAddr(), 0);
    EXPECT_TRUE(socket.SetReuseAddr(false));
    EXPECT_EQ(socket.GetReuseAddr(), 0);
    EXPECT_TRUE(socket.SetKeepAlive(true));
    EXPECT_NE(socket.GetKeepAlive(), 0);
    EXPECT_TRUE(socket.SetKeepAlive(false));
    EXPECT_EQ(socket.GetKeepAlive(), 0);
    EXPECT_TRUE(socket.SetSendBufSize(65536));
    EXPECT_GE(socket.GetSendBufSize(), 65536);
    EXPECT_TRUE(socket.SetReceiveBufSize(65536));
    EXPECT_GE(socket.GetReceiveBufSize(), 65536);
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(Sockets, linger_for_a_positive_time_and_not_for_none) {
    Socket socket(1200);
    EXPECT_TRUE(socket.SetLingerOnOff(true));
    EXPECT_NE(socket.GetLingerOnOff(), 0);
    EXPECT_TRUE(socket.SetLingerSeconds(10));
    EXPECT_NE(socket.GetLingerOnOff(), 0);
    EXPECT_EQ(socket.GetLingerSeconds(), 10);
    EXPECT_TRUE(socket.SetLingerSeconds(0));
    EXPECT_EQ(socket.GetLingerOnOff(), 0);
    EXPECT_TRUE(socket.SetLingerSeconds(10));
    EXPECT_TRUE(socket.SetLingerSeconds(-1));
    EXPECT_EQ(socket.GetLingerOnOff(), 0);
    EXPECT_TRUE(socket.SetLingerOnOff(false));
    EXPECT_EQ(socket.GetLingerOnOff(), 0);
    EXPECT_THAT(Lines(), ElementsAre());
}

// The stored flag itself is passed to the system as its switch for not blocking.
TEST_F(Sockets, stop_blocking_when_they_are_marked_as_blocking_again) {
    Socket socket(1200);
    EXPECT_TRUE(socket.SetSocketBlocking(1));
    EXPECT_TRUE(Blocks(socket));
    EXPECT_TRUE(socket.SetSocketBlocking(0));
    EXPECT_EQ(socket.GetBlocking(), 0);
    EXPECT_TRUE(Blocks(socket));
    EXPECT_TRUE(socket.SetSocketBlocking(1));
    EXPECT_EQ(socket.GetBlocking(), 1);
    EXPECT_FALSE(Blocks(socket));
}

TEST_F(Sockets, that_are_closed_say_what_failed) {
    Socket socket;
    EXPECT_FALSE(socket.SetReuseAddr(true));
    EXPECT_FALSE(socket.SetKeepAlive(true));
    EXPECT_FALSE(socket.SetLingerSeconds(10));
    EXPECT_FALSE(socket.SetLingerOnOff(true));
    EXPECT_FALSE(socket.SetSendBufSize(1));
    EXPECT_FALSE(socket.SetReceiveBufSize(1));
    EXPECT_FALSE(socket.SetSocketBlocking(0));
    EXPECT_EQ(socket.GetReuseAddr(), -1);
    EXPECT_EQ(socket.GetKeepAlive(), -1);
    EXPECT_EQ(socket.GetLingerSeconds(), -1);
    EXPECT_EQ(socket.GetLingerOnOff(), -1);
    EXPECT_EQ(socket.GetSendBufSize(), -1);
    EXPECT_EQ(socket.GetReceiveBufSize(), -1);
    EXPECT_THAT(Lines(), ElementsAre("Socket::SetReuseAddr Failure in setsockopt SO_REUSEADDR",
                                     "Socket::SetKeepAlive Failure in setsockopt SO_KEEPALIVE",
                                     "Socket::SetLingerSeconds Failure in setsockopt SO_LINGER",
                                     "Socket::SetLingerOnOff Failure in setsockopt SO_LINGER",
                                     "Socket::SetSendBufSize Failure in setsockopt SO_SNDBUF",
                                     "Socket::SetReceiveBufSize Failure in setsockopt SO_RCVBUF",
                                     "Socket::SetSocketBlocking Failure in ioctl FIONBIO",
                                     "Socket::GetReuseAddr Failure in getsockopt SO_REUSEADDR",
                                     "Socket::GetKeepAlive Failure in getsockopt SO_KEEPALIVE",
                                     "Socket::GetLingerSeconds Failure in getsockopt SO_LINGER",
                                     "Socket::GetLingerOnOff Failure in getsockopt SO_LINGER",
                                     "Socket::GetSendBufSize Failure in getsockopt SO_SNDBUFSO",
                                     "Socket::GetReceiveBufSize Failure in getsockopt SO_RCVBUF"));
}

TEST_F(Sockets, forget_port_and_marks_when_closed) {
    Socket socket(1200);
    const int descriptor = socket.GetDescriptor();
    EXPECT_TRUE(socket.SetSocketBlocking(0));
    EXPECT_FALSE(socket.CloseConnection());  // never connected
    EXPECT_EQ(socket.GetPortNumber(), -1);
    EXPECT_EQ(socket.GetDescriptor(), -1);
    EXPECT_EQ(socket.GetBlocking(), 1);
    EXPECT_FALSE(IsOpen(descriptor));
    EXPECT_THAT(Lines(), ElementsAre("Socket::CloseConnection Failure Shutting down socket"));
}

TEST_F(Sockets, that_are_closed_are_closed_again_without_a_word) {
    Socket socket;
    EXPECT_TRUE(socket.CloseConnection());
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(Sockets, say_that_closing_failed) {
    Socket socket(1200);
    close(socket.GetDescriptor());
    socket.CloseConnection();
    EXPECT_THAT(Lines(), ElementsAre("Socket::CloseConnection Failure Shutting down socket",
                                     "Socket::CloseConnection Failure Closing socket"));
}

TEST_F(Sockets, are_copied_with_all_they_have) {
    Socket socket(1200);
    EXPECT_TRUE(socket.SetSocketBlocking(0));
    const Socket copy(socket);
    EXPECT_EQ(copy.GetDescriptor(), socket.GetDescriptor());
    EXPECT_EQ(copy.GetPortNumber(), 1200);
    EXPECT_EQ(copy.GetBlocking(), 0);
    EXPECT_EQ(copy.GetAddress().sin_port, htons(1200));
}

TEST_F(Sockets, stay_open_until_the_last_copy_is_destroyed) {
    int descriptor = -1;
    {
        Socket copy;
        {
            const Socket socket(1200);
            descriptor = socket.GetDescriptor();
            copy = socket;
        }
        EXPECT_TRUE(IsOpen(descriptor));
    }
    EXPECT_FALSE(IsOpen(descriptor));
    EXPECT_THAT(Lines(), ElementsAre());
}

TEST_F(Sockets, are_closed_with_all_their_copies_and_once) {
    Socket socket(1200);
    Socket copy(socket);
    socket.CloseConnection();
    EXPECT_EQ(copy.GetDescriptor(), -1);
    const int reused = dup(0);  // the number that was just closed
    copy.CloseConnection();
    EXPECT_TRUE(IsOpen(reused));
    close(reused);
    EXPECT_THAT(Lines(), ElementsAre("Socket::CloseConnection Failure Shutting down socket"));
}

TEST_F(Sockets, that_are_closed_for_good_open_no_more) {
    Socket socket(1200);
    socket.CloseForGood();
    EXPECT_FALSE(socket.SetPortNumber(1201));
    EXPECT_EQ(socket.GetDescriptor(), -1);
    EXPECT_THAT(Lines(), ElementsAre("Socket::CloseConnection Failure Shutting down socket",
                                     "Socket::SetPortNumber Unable to create Socket"));
}
