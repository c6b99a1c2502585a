#include <gtest/gtest.h>

#include <thread>

#include "Frameworks/Threading/Mutex.h"
#include "Tests/Support/ExactTime.h"

namespace {

using SteadyClock = std::chrono::steady_clock;
using namespace std::chrono_literals;

using ConditionInExactTime = ExactBoardTest;

}  // namespace

TEST(Condition, wakes_every_waiting_thread) {
    Mutex mutex;
    Condition changed;
    int waiting = 0;
    bool isOpen = false;
    const auto wait = [&] {
        const MutexLock lock(mutex);
        ++waiting;
        changed.NotifyAll();
        while (!isOpen) {
            changed.Wait(mutex);
        }
    };
    std::thread first(wait);
    std::thread second(wait);
    {
        const MutexLock lock(mutex);
        while (waiting < 2) {
            changed.Wait(mutex);
        }
        isOpen = true;
        changed.NotifyAll();
    }
    first.join();
    second.join();
}

TEST_F(ConditionInExactTime, gives_up_at_the_deadline_and_not_before) {
    Mutex mutex;
    Condition changed;
    const MutexLock lock(mutex);
    const auto deadline = SteadyClock::now() + 1030ms;
    while (changed.WaitUntil(mutex, deadline)) {
    }
    EXPECT_THAT(Board().Seconds(), IsWaitOf(1.03));
}

TEST(Condition, is_notified_before_the_deadline) {
    Mutex mutex;
    Condition changed;
    bool isOpen = false;
    std::thread opener;
    const auto deadline = SteadyClock::now() + 24h;
    {
        const MutexLock lock(mutex);
        opener = std::thread([&] {
            const MutexLock openerLock(mutex);
            isOpen = true;
            changed.NotifyAll();
        });
        while (!isOpen) {
            EXPECT_TRUE(changed.WaitUntil(mutex, deadline));
        }
    }
    opener.join();
}
