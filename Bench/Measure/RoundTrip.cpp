#include "Bench/Measure/RoundTrip.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace Bench {

namespace {

class Queue {
public:
    void Send(int message) {
        {
            const std::lock_guard lock(m_mutex);
            m_messages.push_back(message);
        }
        m_filled.notify_one();
    }

    int Receive() {
        std::unique_lock lock(m_mutex);
        m_filled.wait(lock, [this] { return !m_messages.empty(); });
        const int message = m_messages.front();
        m_messages.pop_front();
        return message;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_filled;
    std::deque<int> m_messages;
};

}  // namespace

std::vector<double> RoundTrips(int count) {
    constexpr int End = -1;
    Queue there;
    Queue back;
    std::thread other([&there, &back] {
        for (int message = there.Receive(); message != End; message = there.Receive()) {
            back.Send(message);
        }
    });
    std::vector<double> seconds;
    for (int message = 0; message < count; ++message) {
        const auto start = std::chrono::steady_clock::now();
        there.Send(message);
        back.Receive();
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    there.Send(End);
    other.join();
    return seconds;
}

}  // namespace Bench
