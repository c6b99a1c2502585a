// Lets the measuring thread wait until others have done something a number of times.
#pragma once

#include <atomic>
#include <semaphore>

class Countdown {
public:
    // Call before any of them can be done.
    void Expect(int times) { m_left = times; }

    void Done() {
        if (m_left.fetch_sub(1, std::memory_order_relaxed) == 1) {
            m_all.release();
        }
    }

    void Wait() { m_all.acquire(); }

private:
    std::atomic<int> m_left{0};
    std::binary_semaphore m_all{0};
};
