// The other end of a TCP link, byte by byte: a listener on a free port of this machine, and the connections that it
// accepts. A minute without data ends a test that would hang.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <utility>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

class RawConnection {
public:
    explicit RawConnection(int descriptor) : m_descriptor(descriptor) {
        const timeval deadline{60, 0};
        setsockopt(m_descriptor, SOL_SOCKET, SO_RCVTIMEO, &deadline, sizeof deadline);
    }
    RawConnection(RawConnection&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;
    RawConnection& operator=(RawConnection&&) = delete;
    ~RawConnection() { Close(); }

    void Send(const Bytes& bytes) const {
        EXPECT_EQ(send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }

    // Reads `size` bytes, or fewer at the end of the connection, by any cause.
    Bytes Receive(std::size_t size) const {
        Bytes bytes(size);
        std::size_t received = 0;
        while (received < size) {
            const ssize_t count = recv(m_descriptor, bytes.data() + received, size - received, 0);
            if (count <= 0) {
                EXPECT_TRUE(count == 0 || errno == ECONNRESET) << "nothing came";
                break;
            }
            received += static_cast<std::size_t>(count);
        }
        bytes.resize(received);
        return bytes;
    }

    bool IsEnded() const { return Receive(1).empty(); }

    void EndSending() const { shutdown(m_descriptor, SHUT_WR); }

    // The other end sees a reset.
    void Abort() {
        const linger none{1, 0};
        setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &none, sizeof none);
        Close();
    }

    void Close() {
        if (m_descriptor != -1) {
            close(std::exchange(m_descriptor, -1));
        }
    }

private:
    int m_descriptor;
};

class RawListener {
public:
    RawListener() : m_descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const timeval deadline{60, 0};
        setsockopt(m_descriptor, SOL_SOCKET, SO_RCVTIMEO, &deadline, sizeof deadline);
        sockaddr_in address = Loopback();
        EXPECT_EQ(bind(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(m_descriptor, 16), 0);
    }
    RawListener(const RawListener&) = delete;
    RawListener& operator=(const RawListener&) = delete;
    ~RawListener() { close(m_descriptor); }

    std::uint16_t Port() const {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        EXPECT_EQ(getsockname(m_descriptor, reinterpret_cast<sockaddr*>(&address), &size), 0);
        return ntohs(address.sin_port);
    }

    RawConnection Accept() const {
        const int accepted = accept(m_descriptor, nullptr, nullptr);
        EXPECT_NE(accepted, -1) << "no connection";
        return RawConnection(accepted);
    }

private:
    static sockaddr_in Loopback() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return address;
    }

    const int m_descriptor;
};
