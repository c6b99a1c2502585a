// The links of a program in exact time: the test is the peer, its threads are the program.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>

#include "Tests/Bench/Deterministic/ExactFixture.h"

namespace {

constexpr int Port = 3111;

std::atomic<int> brokenPipes{0};

class WireInExactTime : public ExactTest {
protected:
    WireInExactTime() { Board().LayWire(Port); }

    // A socket of the program; -1 with errno if it is refused.
    static int Connect(int port = Port) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        const int file = socket(AF_INET, SOCK_STREAM, 0);
        if (connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
            return file;
        }
        const int error = errno;
        close(file);
        errno = error;
        return -1;
    }

    // What one call receives, at most so many bytes.
    static std::string Receive(int file, std::size_t most = 100, int flags = 0) {
        char bytes[100];
        const ssize_t got = recv(file, bytes, most, flags);
        return got < 0 ? std::string("!") + strerrorname_np(errno) : std::string(bytes, static_cast<std::size_t>(got));
    }

    static bool Send(int file, const std::string& bytes) {
        return send(file, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }

    std::string Taken() { return Board().TakeFromWire(Port).bytes; }
};

}  // namespace

TEST_F(WireInExactTime, a_port_without_a_listening_peer_refuses) {
    EXPECT_EQ(Connect(Port + 1), -1);
    EXPECT_EQ(errno, ECONNREFUSED);
    EXPECT_FALSE(Board().GiveToWire(Port, "early"));
}

TEST_F(WireInExactTime, a_connection_is_seen_until_the_program_closes_it) {
    const int file = Connect();
    ASSERT_GE(file, 0);
    EXPECT_TRUE(Board().TakeFromWire(Port).connected);
    EXPECT_EQ(Board().TakeFromWire(Port).connections, 1U);
    close(file);
    EXPECT_FALSE(Board().TakeFromWire(Port).connected);
    EXPECT_FALSE(Board().GiveToWire(Port, "late"));
}

TEST_F(WireInExactTime, bytes_arrive_at_their_moment_and_in_their_order) {
    const int file = Connect();
    EXPECT_TRUE(Board().GiveToWire(Port, "one", 2.5));
    EXPECT_TRUE(Board().GiveToWire(Port, "two", 0.5));  // does not overtake
    const double begin = Board().Seconds();
    EXPECT_EQ(Receive(file), "one");
    EXPECT_THAT(Board().Seconds() - begin, IsWaitOf(2.5));
    EXPECT_EQ(Receive(file), "two");
    EXPECT_THAT(Board().Seconds() - begin, IsWaitOf(2.5));
    close(file);
}

TEST_F(WireInExactTime, a_waiting_reader_gets_what_comes) {
    const int file = Connect();
    std::string received;
    std::thread reader([&] { received = Receive(file); });
    Rest(3.0);
    Board().GiveToWire(Port, "now");
    reader.join();
    EXPECT_EQ(received, "now");
    close(file);
}

TEST_F(WireInExactTime, a_short_read_leaves_the_rest_and_a_look_leaves_all) {
    const int file = Connect();
    Board().GiveToWire(Port, "abcdef");
    EXPECT_EQ(Receive(file, 4, MSG_PEEK), "abcd");
    EXPECT_EQ(Receive(file, 4), "abcd");
    EXPECT_EQ(Receive(file, 4), "ef");
    EXPECT_EQ(Receive(file, 4, MSG_DONTWAIT), "!EAGAIN");
    close(file);
}

TEST_F(WireInExactTime, a_long_piece_arrives_whole) {
    const int file = Connect();
    const std::string sent = std::string(1500, 'x') + "end";
    Board().GiveToWire(Port, sent);
    std::string received;
    while (received.size() < sent.size()) {
        received += Receive(file);
    }
    EXPECT_EQ(received, sent);
    close(file);
}

TEST_F(WireInExactTime, too_much_unread_is_refused) {
    const int file = Connect();
    int given = 0;
    while (given < 1000 && Board().GiveToWire(Port, "x")) {
        ++given;
    }
    EXPECT_EQ(given, 256);
    close(file);
}

TEST_F(WireInExactTime, the_peer_takes_what_the_newest_connection_sent) {
    const int first = Connect();
    EXPECT_TRUE(Send(first, "old"));
    EXPECT_EQ(Taken(), "old");
    EXPECT_TRUE(Send(first, "lost"));
    const int second = Connect();
    EXPECT_TRUE(Send(second, "new"));
    EXPECT_EQ(Taken(), "new");
    EXPECT_EQ(Receive(first), "");
    EXPECT_FALSE(Send(first, "late"));
    EXPECT_EQ(errno, EPIPE);
    close(first);
    EXPECT_TRUE(Board().TakeFromWire(Port).connected);
    close(second);
}

TEST_F(WireInExactTime, after_the_peer_has_ended_the_second_piece_breaks_the_pipe) {
    const int file = Connect();
    Board().EndWire(Port, false);
    EXPECT_EQ(Receive(file), "");
    EXPECT_TRUE(Send(file, "first"));
    EXPECT_EQ(Taken(), "");
    EXPECT_FALSE(Send(file, "second"));
    EXPECT_EQ(errno, EPIPE);
    close(file);
}

TEST_F(WireInExactTime, a_broken_pipe_signals_the_program) {
    const int file = Connect();
    Board().EndWire(Port, false);
    Receive(file);
    auto* const before = std::signal(SIGPIPE, [](int) { ++brokenPipes; });
    brokenPipes = 0;
    EXPECT_EQ(send(file, "a", 1, 0), 1);
    EXPECT_EQ(brokenPipes, 0);
    EXPECT_EQ(send(file, "b", 1, 0), -1);
    EXPECT_EQ(brokenPipes, 1);
    std::signal(SIGPIPE, before);
    close(file);
}

TEST_F(WireInExactTime, an_abort_is_an_error_once) {
    const int file = Connect();
    Board().EndWire(Port, true, 1.0);
    EXPECT_EQ(Receive(file), "!ECONNRESET");
    EXPECT_EQ(Receive(file), "");
    close(file);
}

TEST_F(WireInExactTime, a_shutdown_ends_the_wait_of_a_reader) {
    const int file = Connect();
    std::string received = "nothing";
    std::thread reader([&] { received = Receive(file); });
    Rest(3.0);
    EXPECT_EQ(shutdown(file, SHUT_RDWR), 0);
    reader.join();
    EXPECT_EQ(received, "");
    EXPECT_FALSE(Board().TakeFromWire(Port).connected);
    close(file);
}

TEST_F(WireInExactTime, a_socket_without_a_connection_is_refused) {
    const int file = socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(Receive(file), "!ENOTCONN");
    EXPECT_EQ(shutdown(file, SHUT_RDWR), -1);
    EXPECT_EQ(errno, ENOTCONN);
    EXPECT_FALSE(Send(file, "x"));
    close(file);
}

TEST_F(WireInExactTime, the_fault_that_cuts_a_link_cuts_the_wire) {
    std::string error;
    ASSERT_TRUE(Board().SetFault("link-cut=5,3111", error)) << error;
    const int file = Connect();
    Board().GiveToWire(Port, "abcdefgh");
    EXPECT_EQ(Receive(file), "abcde");
    EXPECT_EQ(Receive(file), "!ECONNRESET");
    EXPECT_FALSE(Board().TakeFromWire(Port).connected);
    close(file);
}
