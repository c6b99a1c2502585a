// Semaphores of a program in exact time.
#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "Tests/Bench/Deterministic/ExactFixture.h"

namespace {

class SemaphoreInExactTime : public ExactTest {
protected:
    SemaphoreInExactTime() { sem_init(&semaphore, 0, 0); }
    ~SemaphoreInExactTime() override { sem_destroy(&semaphore); }

    std::thread PostAfter(double seconds) {
        return std::thread([this, seconds] {
            Rest(seconds);
            EXPECT_EQ(sem_post(&semaphore), 0);
        });
    }

    int Value() {
        int value = -1;
        sem_getvalue(&semaphore, &value);
        return value;
    }

    sem_t semaphore{};
};

}  // namespace

TEST_F(SemaphoreInExactTime, is_waited_for_until_it_is_posted) {
    std::thread poster = PostAfter(7200.0);
    EXPECT_EQ(sem_wait(&semaphore), 0);
    EXPECT_NEAR(Board().Seconds(), 7200.0, 1e-3);
    EXPECT_EQ(Value(), 0);
    poster.join();
}

TEST_F(SemaphoreInExactTime, lets_through_as_many_threads_as_it_is_posted_times) {
    std::atomic<int> through{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this, &through] {
            EXPECT_EQ(sem_wait(&semaphore), 0);
            ++through;
        });
    }
    Rest(1.0);
    sem_post(&semaphore);
    sem_post(&semaphore);
    Rest(1.0);
    EXPECT_EQ(through, 2);
    sem_post(&semaphore);
    sem_post(&semaphore);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(through, 4);
}

TEST_F(SemaphoreInExactTime, at_0_is_not_got_by_a_try) {
    errno = 0;
    EXPECT_EQ(sem_trywait(&semaphore), -1);
    EXPECT_EQ(errno, EAGAIN);
    sem_post(&semaphore);
    EXPECT_EQ(sem_trywait(&semaphore), 0);
    EXPECT_EQ(Value(), 0);
}

TEST_F(SemaphoreInExactTime, is_given_up_at_the_asked_moment) {
    const timespec wall = In(20.0);
    EXPECT_EQ(sem_timedwait(&semaphore, &wall), -1);
    EXPECT_EQ(errno, ETIMEDOUT);
    EXPECT_EQ(Board().WallNanoSeconds(), Bench::NanoSecondsOf(wall));
    const timespec steady = In(15.0, CLOCK_MONOTONIC);
    errno = 0;
    EXPECT_EQ(sem_clockwait(&semaphore, CLOCK_MONOTONIC, &steady), -1);
    EXPECT_EQ(errno, ETIMEDOUT);
    EXPECT_EQ(Now(), Bench::NanoSecondsOf(steady));
}

TEST_F(SemaphoreInExactTime, is_got_before_the_asked_moment_and_at_once_if_it_is_posted) {
    std::thread poster = PostAfter(30.0);
    const timespec later = In(60.0);
    EXPECT_EQ(sem_timedwait(&semaphore, &later), 0);
    EXPECT_NEAR(Board().Seconds(), 30.0, 1e-3);
    poster.join();
    sem_post(&semaphore);
    const timespec past = In(-10.0);
    EXPECT_EQ(sem_timedwait(&semaphore, &past), 0);
    EXPECT_NEAR(Board().Seconds(), 30.0, 1e-3);
}

TEST_F(SemaphoreInExactTime, refuses_a_moment_that_is_none) {
    timespec wrong = In(5.0);
    wrong.tv_nsec = 1000000000;
    EXPECT_EQ(sem_timedwait(&semaphore, &wrong), -1);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(sem_clockwait(&semaphore, CLOCK_MONOTONIC, &wrong), -1);
    EXPECT_EQ(errno, EINVAL);
}
