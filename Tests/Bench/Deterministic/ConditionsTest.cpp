// Condition variables of a program in exact time.
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "Tests/Bench/Deterministic/ExactFixture.h"

namespace {

class ConditionInExactTime : public ExactTest {
protected:
    ConditionInExactTime() {
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&steady, &attributes);
        pthread_condattr_destroy(&attributes);
    }

    // So many threads that wait, each until it is woken once.
    void StartWaiters(int count) {
        for (int i = 0; i < count; ++i) {
            m_waiters.emplace_back([this] {
                pthread_mutex_lock(&mutex);
                ++waiting;
                EXPECT_EQ(pthread_cond_wait(&condition, &mutex), 0);
                ++woken;
                pthread_mutex_unlock(&mutex);
            });
        }
        for (bool all = false; !all; sched_yield()) {
            pthread_mutex_lock(&mutex);
            all = waiting == count;
            pthread_mutex_unlock(&mutex);
        }
    }

    void JoinWaiters() {
        for (std::thread& waiter : m_waiters) {
            waiter.join();
        }
    }

    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
    pthread_cond_t steady{};
    int waiting = 0;
    std::atomic<int> woken{0};

private:
    std::vector<std::thread> m_waiters;
};

}  // namespace

TEST_F(ConditionInExactTime, wakes_one_thread_with_each_signal) {
    StartWaiters(3);
    for (int expected = 1; expected <= 3; ++expected) {
        EXPECT_EQ(pthread_cond_signal(&condition), 0);
        Rest(10.0);
        EXPECT_EQ(woken, expected);
    }
    JoinWaiters();
}

TEST_F(ConditionInExactTime, wakes_all_threads_with_a_broadcast) {
    StartWaiters(3);
    EXPECT_EQ(pthread_cond_broadcast(&condition), 0);
    Rest(10.0);
    EXPECT_EQ(woken, 3);
    JoinWaiters();
}

TEST_F(ConditionInExactTime, keeps_no_signal_for_later) {
    EXPECT_EQ(pthread_cond_signal(&condition), 0);
    pthread_mutex_lock(&mutex);
    const timespec until = In(5.0);
    EXPECT_EQ(pthread_cond_timedwait(&condition, &mutex, &until), ETIMEDOUT);
    pthread_mutex_unlock(&mutex);
}

TEST_F(ConditionInExactTime, is_given_up_at_the_asked_moment_of_its_clock) {
    pthread_mutex_lock(&mutex);
    timespec until = In(3600.0);
    EXPECT_EQ(pthread_cond_timedwait(&condition, &mutex, &until), ETIMEDOUT);
    EXPECT_EQ(Board().WallNanoSeconds(), Bench::NanoSecondsOf(until));
    until = In(1800.0, CLOCK_MONOTONIC);
    EXPECT_EQ(pthread_cond_timedwait(&steady, &mutex, &until), ETIMEDOUT);
    EXPECT_EQ(Now(), Bench::NanoSecondsOf(until));
    until = In(900.0, CLOCK_MONOTONIC);
    EXPECT_EQ(pthread_cond_clockwait(&condition, &mutex, CLOCK_MONOTONIC, &until), ETIMEDOUT);
    EXPECT_EQ(Now(), Bench::NanoSecondsOf(until));
    until = In(450.0);
    EXPECT_EQ(pthread_cond_clockwait(&steady, &mutex, CLOCK_REALTIME, &until), ETIMEDOUT);
    EXPECT_EQ(Board().WallNanoSeconds(), Bench::NanoSecondsOf(until));
    pthread_mutex_unlock(&mutex);
}

TEST_F(ConditionInExactTime, is_met_before_the_asked_moment) {
    std::thread other([this] {
        Rest(30.0);
        pthread_mutex_lock(&mutex);
        pthread_cond_signal(&condition);
        pthread_mutex_unlock(&mutex);
    });
    pthread_mutex_lock(&mutex);
    const timespec until = In(3600.0);
    EXPECT_EQ(pthread_cond_timedwait(&condition, &mutex, &until), 0);
    EXPECT_NEAR(Board().Seconds(), 30.0, 1e-3);
    pthread_mutex_unlock(&mutex);
    other.join();
}

TEST_F(ConditionInExactTime, gives_the_mutex_back_while_it_waits_and_has_it_afterwards) {
    pthread_mutex_lock(&mutex);
    std::thread other([this] {
        EXPECT_EQ(pthread_mutex_lock(&mutex), 0);
        pthread_cond_signal(&condition);
        Rest(20.0);
        woken = 5;
        pthread_mutex_unlock(&mutex);
    });
    EXPECT_EQ(pthread_cond_wait(&condition, &mutex), 0);
    EXPECT_EQ(woken, 5);
    EXPECT_EQ(pthread_mutex_trylock(&mutex), EBUSY);
    pthread_mutex_unlock(&mutex);
    other.join();
}

TEST_F(ConditionInExactTime, refuses_a_moment_that_is_none) {
    pthread_mutex_lock(&mutex);
    timespec wrong = In(5.0);
    wrong.tv_nsec = -1;
    EXPECT_EQ(pthread_cond_timedwait(&condition, &mutex, &wrong), EINVAL);
    EXPECT_EQ(pthread_cond_clockwait(&condition, &mutex, CLOCK_MONOTONIC, &wrong), EINVAL);
    pthread_mutex_unlock(&mutex);
}

#ifndef __SANITIZE_THREAD__  // which reports the misuse itself
TEST_F(ConditionInExactTime, refuses_a_mutex_that_another_thread_has) {
    pthread_mutex_t checked = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
    pthread_mutex_lock(&checked);
    std::thread([this, &checked] { EXPECT_EQ(pthread_cond_wait(&condition, &checked), EPERM); }).join();
    pthread_mutex_unlock(&checked);
}
#endif

// A loop of waits whose moment has passed must not keep others from the mutex.
TEST_F(ConditionInExactTime, lets_others_have_the_mutex_if_the_moment_has_passed) {
    pthread_mutex_lock(&mutex);
    bool met = false;
    std::thread other([this, &met] {
        pthread_mutex_lock(&mutex);
        met = true;
        pthread_mutex_unlock(&mutex);
    });
    const timespec past = In(-1.0);
    int tries = 0;
    for (; !met && tries < 10000; ++tries) {
        EXPECT_EQ(pthread_cond_timedwait(&condition, &mutex, &past), ETIMEDOUT);
    }
    EXPECT_LT(tries, 10000);
    pthread_mutex_unlock(&mutex);
    other.join();
}

TEST_F(ConditionInExactTime, of_the_cpp_library_waits_in_simulated_time) {
    std::mutex own;
    std::condition_variable changed;
    int state = 0;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::minutes(10));
        const std::lock_guard<std::mutex> lock(own);
        state = 3;
        changed.notify_one();
    });
    std::unique_lock<std::mutex> lock(own);
    EXPECT_FALSE(changed.wait_for(lock, std::chrono::minutes(5), [&state] { return state == 3; }));
    EXPECT_NEAR(Board().Seconds(), 300.0, 1e-3);
    changed.wait(lock, [&state] { return state == 3; });
    EXPECT_NEAR(Board().Seconds(), 600.0, 1e-3);
    EXPECT_FALSE(changed.wait_until(lock, std::chrono::system_clock::now() + std::chrono::minutes(5),
                                    [&state] { return state == 4; }));
    EXPECT_NEAR(Board().Seconds(), 900.0, 1e-3);
    lock.unlock();
    other.join();
}
