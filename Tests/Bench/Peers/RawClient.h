// A TCP client in place of the analyzer, with blocking calls.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

namespace Bench {

// Seconds; ends a test that would hang.
constexpr double Deadline = 60.0;

class RawClient {
public:
    enum Expectation { MustConnect, MayFail };

    explicit RawClient(std::uint16_t port, Expectation expectation = MustConnect)
        : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        m_isConnected = connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        EXPECT_TRUE(m_isConnected || expectation == MayFail);
    }
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;
    ~RawClient() { close(m_socket); }

    bool IsConnected() const { return m_isConnected; }

    void Write(const std::string& bytes) const {
        std::size_t sent = 0;
        while (sent < bytes.size()) {
            const ssize_t length = send(m_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (length <= 0) {
                return;  // cut off: CutReason() of the peer says why
            }
            sent += static_cast<std::size_t>(length);
        }
    }

    // Reads that many bytes, or fewer at the end of the connection.
    std::string Read(std::size_t size) const {
        std::string bytes(size, '\0');
        const ssize_t length = recv(m_socket, bytes.data(), size, MSG_WAITALL);
        bytes.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return bytes;
    }

    // -1 for a connection that was cut off.
    ssize_t ReadResult() const {
        char byte = 0;
        return recv(m_socket, &byte, 1, 0);
    }

private:
    int m_socket;
    bool m_isConnected;
};

}  // namespace Bench
