// The unit for the machine's speed: the time in which two threads pass a message to each other and back. One thread at
// a time.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace Bench {

// Between the caller and its own thread, by two queues with a mutex, a condition variable and a deque each.
class RoundTrip {
public:
    RoundTrip();
    RoundTrip(const RoundTrip&) = delete;
    RoundTrip& operator=(const RoundTrip&) = delete;
    ~RoundTrip();

    double Once();  // real seconds

private:
    class Queue {
    public:
        void Send(int message);
        int Receive();

    private:
        std::mutex m_mutex;
        std::condition_variable m_filled;
        std::deque<int> m_messages;
    };

    void Answer();

    Queue m_there;
    Queue m_back;
    std::thread m_other;
};

}  // namespace Bench
