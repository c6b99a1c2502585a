// One end of a link: a TCP server on the loopback interface with one connection at a time, the newest, which a thread
// of its own reads. Every public operation may be called from any thread. Seconds are those of this process's clock.
// Whoever derives from it calls Start once it is ready and Stop in its destructor.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace Bench {

class LinkServer {
public:
    virtual ~LinkServer();
    LinkServer(const LinkServer&) = delete;
    LinkServer& operator=(const LinkServer&) = delete;

    std::uint16_t Port() const { return m_port; }
    bool IsConnected() const;
    std::size_t Connections() const;  // so far
    std::string Trouble() const;      // why the last connection was cut from here; empty where it wasn't

    // All of it at once. False without a connection, or where the other side leaves so much unread that it doesn't fit.
    bool Send(std::string_view bytes);

    void Disconnect();  // as a program does that ends
    void Abort();       // as one does that is cut off: the other side's read fails

    bool WaitForConnection(double seconds) const {
        return WaitFor(seconds, [this] { return m_connection >= 0; });
    }
    // Of that number or later; the first is 1.
    bool WaitForConnection(std::size_t number, double seconds) const {
        return WaitFor(seconds, [this, number] { return m_connection >= 0 && m_connections >= number; });
    }
    bool WaitForEnd(double seconds) const {
        return WaitFor(seconds, [this] { return m_connection < 0; });
    }

protected:
    LinkServer() = default;

    // False with a sentence in `error` where the port can't be had. Port 0: any that is free.
    bool Listen(std::uint16_t port, std::string& error);
    void Start();
    void Stop();

    // Both with the lock held, on the server's thread. What came, in pieces as the system gives them; false with a
    // sentence cuts the connection.
    virtual bool Receive(std::string_view bytes, std::string& trouble) = 0;
    virtual void Begin() = 0;  // a new connection

    // Until the condition, which is looked at with the lock held; false after that time.
    template <typename Condition>
    bool WaitFor(double seconds, Condition condition) const {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::duration<double>(seconds), condition);
    }

    mutable std::mutex m_mutex;

private:
    void Serve();
    void Accept();
    void Read();
    void Close();
    void Wake(char order) const;

    mutable std::condition_variable m_changed;
    std::thread m_thread;
    std::uint16_t m_port = 0;
    int m_listener = -1;
    int m_wake[2] = {-1, -1};
    // Written by the server's thread alone, with the lock held.
    int m_connection = -1;
    std::size_t m_connections = 0;
    std::string m_trouble;
};

}  // namespace Bench
