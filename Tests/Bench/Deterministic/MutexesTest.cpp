// Mutexes of a program in exact time.
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <mutex>
#include <thread>

#include "Tests/Bench/Deterministic/ExactFixture.h"

namespace {

class Mutex {
public:
    explicit Mutex(int type = PTHREAD_MUTEX_DEFAULT) {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, type);
        pthread_mutex_init(&m_mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    ~Mutex() { EXPECT_EQ(pthread_mutex_destroy(&m_mutex), 0); }
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    operator pthread_mutex_t*() { return &m_mutex; }

private:
    pthread_mutex_t m_mutex{};
};

class MutexInExactTime : public ExactTest {
protected:
    // A thread that has the mutex from now on for so many seconds.
    std::thread Holder(Mutex& mutex, double seconds) {
        std::atomic<bool> held{false};
        std::thread holder([&mutex, &held, seconds] {
            EXPECT_EQ(pthread_mutex_lock(mutex), 0);
            held = true;
            Rest(seconds);
            EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
        });
        while (!held) {
            sched_yield();
        }
        m_heldFrom = Now();
        return holder;
    }

    double SinceHeld() const { return static_cast<double>(Now() - m_heldFrom) / 1e9; }

private:
    std::int64_t m_heldFrom = 0;
};

}  // namespace

TEST_F(MutexInExactTime, is_held_by_one_thread_at_a_time) {
    Mutex mutex;
    int inside = 0;
    int most = 0;
    int entered = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int times = 0; times < 50; ++times) {
                EXPECT_EQ(pthread_mutex_lock(mutex), 0);
                most = std::max(most, ++inside);
                ++entered;
                sched_yield();
                --inside;
                EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(most, 1);
    EXPECT_EQ(entered, 200);
}

TEST_F(MutexInExactTime, is_waited_for_as_long_as_another_thread_has_it) {
    Mutex mutex;
    std::thread holder = Holder(mutex, 3600.0);
    EXPECT_EQ(pthread_mutex_lock(mutex), 0);
    EXPECT_NEAR(SinceHeld(), 3600.0, 1e-3);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
    holder.join();
}

TEST_F(MutexInExactTime, that_is_held_is_not_got_by_a_try) {
    Mutex mutex;
    std::thread holder = Holder(mutex, 5.0);
    EXPECT_EQ(pthread_mutex_trylock(mutex), EBUSY);
    holder.join();
    EXPECT_EQ(pthread_mutex_trylock(mutex), 0);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
}

TEST_F(MutexInExactTime, is_given_up_at_the_asked_moment) {
    Mutex mutex;
    std::thread holder = Holder(mutex, 60.0);
    const timespec wall = In(20.0);
    EXPECT_EQ(pthread_mutex_timedlock(mutex, &wall), ETIMEDOUT);
    EXPECT_EQ(Board().WallNanoSeconds(), Bench::NanoSecondsOf(wall));
    const timespec steady = In(15.0, CLOCK_MONOTONIC);
    EXPECT_EQ(pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &steady), ETIMEDOUT);
    EXPECT_EQ(Now(), Bench::NanoSecondsOf(steady));
    holder.join();
}

TEST_F(MutexInExactTime, is_got_before_the_asked_moment) {
    Mutex mutex;
    std::thread holder = Holder(mutex, 60.0);
    const timespec later = In(90.0);
    EXPECT_EQ(pthread_mutex_timedlock(mutex, &later), 0);
    EXPECT_NEAR(SinceHeld(), 60.0, 1e-3);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
    holder.join();
}

TEST_F(MutexInExactTime, is_got_after_the_asked_moment_if_it_is_free) {
    Mutex mutex;
    const timespec past = In(-10.0);
    EXPECT_EQ(pthread_mutex_timedlock(mutex, &past), 0);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
}

TEST_F(MutexInExactTime, refuses_a_moment_that_is_none) {
    Mutex mutex;
    std::thread holder = Holder(mutex, 60.0);
    timespec wrong = In(20.0);
    wrong.tv_nsec = 1000000000;
    EXPECT_EQ(pthread_mutex_timedlock(mutex, &wrong), EINVAL);
    EXPECT_EQ(pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &wrong), EINVAL);
    holder.join();
}

TEST_F(MutexInExactTime, that_checks_for_errors_refuses_its_owner) {
    Mutex mutex(PTHREAD_MUTEX_ERRORCHECK);
    const timespec later = In(20.0);
    EXPECT_EQ(pthread_mutex_lock(mutex), 0);
    EXPECT_EQ(pthread_mutex_lock(mutex), EDEADLK);
    EXPECT_EQ(pthread_mutex_timedlock(mutex, &later), EDEADLK);
    EXPECT_EQ(pthread_mutex_trylock(mutex), EBUSY);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
    std::thread holder = Holder(mutex, 7.0);
    EXPECT_EQ(pthread_mutex_lock(mutex), 0);  // of another owner it waits
    EXPECT_NEAR(SinceHeld(), 7.0, 1e-3);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
    holder.join();
}

#ifndef __SANITIZE_THREAD__  // which reports the misuse itself
TEST_F(MutexInExactTime, that_checks_for_errors_is_given_back_by_its_owner_alone) {
    Mutex mutex(PTHREAD_MUTEX_ERRORCHECK);
    EXPECT_EQ(pthread_mutex_unlock(mutex), EPERM);
    EXPECT_EQ(pthread_mutex_lock(mutex), 0);
    std::thread([&mutex] { EXPECT_EQ(pthread_mutex_unlock(mutex), EPERM); }).join();
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
}
#endif

TEST_F(MutexInExactTime, that_is_recursive_is_free_after_as_many_unlocks) {
    Mutex mutex(PTHREAD_MUTEX_RECURSIVE);
    EXPECT_EQ(pthread_mutex_lock(mutex), 0);
    EXPECT_EQ(pthread_mutex_lock(mutex), 0);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
    std::thread([&mutex] { EXPECT_EQ(pthread_mutex_trylock(mutex), EBUSY); }).join();
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
    std::thread([&mutex] {
        EXPECT_EQ(pthread_mutex_trylock(mutex), 0);
        EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
    }).join();
}

TEST_F(MutexInExactTime, of_the_cpp_library_waits_in_simulated_time) {
    std::timed_mutex mutex;
    std::unique_lock<std::timed_mutex> lock(mutex);
    std::thread other([&mutex] {
        EXPECT_EQ(Duration([&mutex] { EXPECT_FALSE(mutex.try_lock_for(std::chrono::seconds(40))); }) / Second, 40);
        EXPECT_TRUE(mutex.try_lock_for(std::chrono::hours(1)));
        mutex.unlock();
    });
    Rest(100.0);
    lock.unlock();
    other.join();
    EXPECT_NEAR(Board().Seconds(), 100.0, 1e-2);
}
