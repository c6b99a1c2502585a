// Clocks and waits for a moment of a program in exact time, also if the wall clock is set meanwhile.
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <thread>

#include "Tests/Bench/Deterministic/ExactFixture.h"

namespace {

using Bench::Simulation::CallCost;
using Bench::Simulation::ClockCost;

class ClockInExactTime : public ExactTest {};

enum class Kind { Semaphore, Mutex, Condition };

// Waits in vain for a semaphore, a mutex or a condition until a moment 100 s from now, while the wall clock is set 10 s
// from now.
class WaitInExactTime : public ExactTest {
protected:
    // Simulated seconds.
    double WaitDuring(Kind kind, clockid_t clock, double jump) {
        std::thread setter([this, jump] {
            Rest(10.0);
            Board().JumpClock(jump);
        });
        const double duration = WaitInVain(kind, clock);
        setter.join();
        return duration;
    }

    double WaitInVain(Kind kind, clockid_t clock) {
        const timespec until = In(100.0, clock);
        std::thread holder;
        pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
        if (kind == Kind::Mutex) {
            std::atomic<bool> held{false};
            holder = std::thread([&] {
                pthread_mutex_lock(&mutex);
                held = true;
                Rest(500.0);
                pthread_mutex_unlock(&mutex);
            });
            while (!held) {
                sched_yield();
            }
        }
        const std::int64_t duration = Duration([&] {
            if (kind == Kind::Semaphore) {
                sem_t semaphore{};
                sem_init(&semaphore, 0, 0);
                EXPECT_EQ(sem_clockwait(&semaphore, clock, &until), -1);
                EXPECT_EQ(errno, ETIMEDOUT);
                sem_destroy(&semaphore);
            } else if (kind == Kind::Mutex) {
                EXPECT_EQ(pthread_mutex_clocklock(&mutex, clock, &until), ETIMEDOUT);
            } else {
                WaitForCondition(clock, until);
            }
        });
        if (holder.joinable()) {
            holder.join();
        }
        return static_cast<double>(duration) / 1e9;
    }

private:
    static void WaitForCondition(clockid_t clock, const timespec& until) {
        pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
        pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
        pthread_mutex_lock(&mutex);
        int error = 0;
        int wakeUps = 0;
        for (; error == 0 && wakeUps < 3; ++wakeUps) {  // it may wake up without a cause
            error = pthread_cond_clockwait(&condition, &mutex, clock, &until);
        }
        EXPECT_EQ(error, ETIMEDOUT);
        pthread_mutex_unlock(&mutex);
    }
};

constexpr Kind Kinds[] = {Kind::Semaphore, Kind::Mutex, Kind::Condition};
constexpr double Accuracy = 1e-3;

}  // namespace

TEST_F(ClockInExactTime, goes_on_by_the_asked_time_in_each_kind_of_sleep) {
    EXPECT_EQ(Duration([] { Rest(36000.25); }), 36000250000000 + CallCost);
    EXPECT_EQ(Duration([] { usleep(750001); }), 750001000 + CallCost);
    EXPECT_EQ(Duration([] { EXPECT_EQ(sleep(86400), 0U); }), 86400 * Second + CallCost);
    const timespec span{7, 5};
    EXPECT_EQ(Duration([&span] { EXPECT_EQ(clock_nanosleep(CLOCK_MONOTONIC, 0, &span, nullptr), 0); }),
              7 * Second + 5 + CallCost);
    const timespec until = In(2.5, CLOCK_MONOTONIC);
    EXPECT_EQ(clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr), 0);
    EXPECT_NEAR(static_cast<double>(Now()), static_cast<double>(Bench::NanoSecondsOf(until)), 10.0 * CallCost);
}

TEST_F(ClockInExactTime, goes_on_by_the_timeout_of_a_poll) {
    const int claim = open("/sys/class/gpio/export", O_WRONLY);
    EXPECT_EQ(write(claim, "1", 1), 1);
    close(claim);
    pollfd file{open("/sys/class/gpio/pioA1/value", O_RDONLY), POLLPRI, 0};
    char level = 0;
    EXPECT_EQ(read(file.fd, &level, 1), 1);
    ASSERT_GE(file.fd, 0);
    EXPECT_NEAR(static_cast<double>(Duration([&file] { EXPECT_EQ(poll(&file, 1, 1234567), 0); })) / 1e9, 1234.567,
                Accuracy);
    close(file.fd);
}

TEST_F(ClockInExactTime, is_the_same_for_each_way_to_read_it) {
    Rest(1000.0);
    const std::int64_t wall = Board().WallNanoSeconds();
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    EXPECT_EQ(Bench::NanoSecondsOf(time), wall + ClockCost);
    timeval day{};
    gettimeofday(&day, nullptr);
    EXPECT_EQ(day.tv_sec * Second + day.tv_usec * 1000, (wall + 2 * ClockCost) / 1000 * 1000);
    EXPECT_EQ(::time(nullptr), (wall + 3 * ClockCost) / Second);
    clock_gettime(CLOCK_MONOTONIC, &time);
    EXPECT_EQ(Bench::NanoSecondsOf(time), Now());
    const clock_t passed = clock();
    EXPECT_EQ(passed, (Now() - Bench::MonotonicAtStart) / 1000);
}

TEST_F(ClockInExactTime, ends_a_busy_wait) {
    const clock_t end = clock() + CLOCKS_PER_SEC / 2;
    const std::int64_t duration = Duration([end] {
        while (clock() < end) {
        }
    });
    EXPECT_NEAR(static_cast<double>(duration) / 1e9, 0.5, Accuracy);
}

TEST_F(ClockInExactTime, is_common_to_threads_that_sleep_at_the_same_time) {
    constexpr double Seconds[] = {30.0, 10.0, 20.0};
    double ends[3] = {};
    std::vector<std::thread> threads;
    for (const std::size_t i : {0U, 1U, 2U}) {
        threads.emplace_back([this, &ends, seconds = Seconds[i], i] {
            Rest(seconds);
            ends[i] = Board().Seconds();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::size_t i : {0U, 1U, 2U}) {
        EXPECT_NEAR(ends[i], Seconds[i], Accuracy);
    }
}

TEST_F(WaitInExactTime, for_a_moment_of_the_wall_clock_is_shorter_if_that_is_set_forward) {
    for (const Kind kind : Kinds) {
        EXPECT_NEAR(WaitDuring(kind, CLOCK_REALTIME, 50.0), 50.0, Accuracy);
    }
}

TEST_F(WaitInExactTime, ends_at_once_if_the_wall_clock_is_set_beyond_its_moment) {
    for (const Kind kind : Kinds) {
        EXPECT_NEAR(WaitDuring(kind, CLOCK_REALTIME, 5000.0), 10.0, Accuracy);
    }
}

TEST_F(WaitInExactTime, for_a_moment_of_the_wall_clock_is_longer_if_that_is_set_back) {
    for (const Kind kind : Kinds) {
        EXPECT_NEAR(WaitDuring(kind, CLOCK_REALTIME, -30.0), 130.0, Accuracy);
    }
}

TEST_F(WaitInExactTime, for_a_moment_of_the_steady_clock_is_as_long_however_the_wall_clock_is_set) {
    for (const Kind kind : Kinds) {
        EXPECT_NEAR(WaitDuring(kind, CLOCK_MONOTONIC, 50.0), 100.0, Accuracy);
        EXPECT_NEAR(WaitDuring(kind, CLOCK_MONOTONIC, -30.0), 100.0, Accuracy);
    }
}

TEST_F(WaitInExactTime, follows_a_clock_that_a_fault_sets_back_meanwhile) {
    SetFault("clock-back=25@40");
    EXPECT_NEAR(WaitInVain(Kind::Semaphore, CLOCK_REALTIME), 125.0, Accuracy);
    EXPECT_NEAR(WaitInVain(Kind::Semaphore, CLOCK_REALTIME), 100.0, Accuracy);
}

TEST_F(WaitInExactTime, follows_a_clock_for_which_a_fault_is_set_meanwhile) {
    for (const Kind kind : Kinds) {
        const double start = Board().Seconds();
        std::thread setter([this, start] {
            Rest(10.0);
            SetFault("clock-back=25@" + std::to_string(start + 40.0));
        });
        EXPECT_NEAR(WaitInVain(kind, CLOCK_REALTIME), 125.0, Accuracy);
        setter.join();
        std::string error;
        Board().ClearFault("clock-back", error);
    }
}
