// One end of a link: a TCP server on the loopback interface that serves one connection at a time, the newest. Its
// thread reads the connection. Every public operation may be called from any thread. Seconds are those of this
// process's clock. On a wire instead, it has no thread: Poll takes what has come, and nothing waits. A derived class
// calls Start when it is ready and Stop in its destructor.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "Bench/Peers/PeerWire.h"

namespace Bench {

class LinkServer {
public:
    virtual ~LinkServer();
    LinkServer(const LinkServer&) = delete;
    LinkServer& operator=(const LinkServer&) = delete;

    std::uint16_t Port() const { return m_port; }
    bool IsConnected() const;
    std::size_t Connections() const;  // so far
    std::string CutReason() const;    // why this end cut the last connection; empty if it did not

    // Sends all bytes at once. Returns false without a connection, or if the peer has left so much unread that they do
    // not fit.
    bool Send(std::string_view bytes);

    // On a wire: takes what has come. It must not be called by another thread at the same time.
    void Poll();

    void Disconnect();  // as a program that ends
    void Abort();       // as a program that is cut off: the peer's read fails

    bool WaitForConnection(double seconds) const { return WaitForConnection(0, seconds); }
    // Of that number or later; the first is 1.
    bool WaitForConnection(std::size_t number, double seconds) const {
        return WaitFor(seconds, [this, number] { return m_connection >= 0 && m_connections >= number; });
    }
    bool WaitForEnd(double seconds) const {
        return WaitFor(seconds, [this] { return m_connection < 0; });
    }

protected:
    LinkServer() = default;

    // Returns false with the reason in `error` if the port is not available. Port 0: any free port.
    bool Listen(std::uint16_t port, std::string& error);
    void Start();
    void Stop();
    void Use(std::unique_ptr<PeerWire> wire) { m_wire = std::move(wire); }  // instead of Listen and Start

    // Both are called on the server's thread with the lock held. Receive gets the bytes in pieces; if it returns false,
    // with the reason, the connection is cut.
    virtual bool Receive(std::string_view bytes, std::string& reason) = 0;
    virtual void Begin() = 0;  // a new connection

    // Waits until the condition holds, which is checked with the lock held. Returns false on timeout.
    template <typename Condition>
    bool WaitFor(double seconds, Condition condition) const {
        std::unique_lock lock(m_mutex);
        if (m_wire != nullptr) {
            return condition();
        }
        return m_changed.wait_for(lock, std::chrono::duration<double>(seconds), condition);
    }

    mutable std::mutex m_mutex;

private:
    void Serve();
    void Accept();
    void Read();
    void Close();
    void CloseSoon(bool aborts);

    mutable std::condition_variable m_changed;
    std::thread m_thread;
    std::unique_ptr<PeerWire> m_wire;
    std::atomic<bool> m_stops{false};
    std::uint16_t m_port = 0;
    int m_listener = -1;
    // Written by the server's thread alone, with the lock held.
    int m_connection = -1;
    std::size_t m_connections = 0;
    std::string m_cutReason;
    bool m_closes = false;  // by any thread, with the lock held: the server's thread is to close the connection
};

}  // namespace Bench
