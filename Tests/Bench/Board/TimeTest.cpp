#include <poll.h>
#include <semaphore.h>
#include <sys/select.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <ctime>
#include <mutex>
#include <thread>

#include "Tests/Support/BoardFixture.h"

namespace {

constexpr std::int64_t Start = 1356955199;
constexpr std::int64_t Second = 1000000000;

Bench::BoardSetup Fast() {
    Bench::BoardSetup setup;
    setup.speed = 1000.0;
    setup.startSeconds = Start;
    return setup;
}

// A board on which a thousand seconds pass in one.
class TimeTest : public BoardTest {
protected:
    TimeTest() : BoardTest(Fast()) {}
};

std::int64_t Nanoseconds(clockid_t clock) {
    timespec now{};
    EXPECT_EQ(clock_gettime(clock, &now), 0);
    return now.tv_sec * Second + now.tv_nsec;
}

timespec In(clockid_t clock, std::int64_t seconds) {
    timespec now{};
    clock_gettime(clock, &now);
    now.tv_sec += static_cast<time_t>(seconds);
    return now;
}

TEST_F(TimeTest, the_wall_clock_begins_at_the_chosen_date) {
    EXPECT_GE(time(nullptr), Start);
    EXPECT_LT(time(nullptr), Start + 86400);
}

TEST_F(TimeTest, all_wall_clocks_agree) {
    const std::int64_t first = Nanoseconds(CLOCK_REALTIME);
    timeval middle{};
    ASSERT_EQ(gettimeofday(&middle, nullptr), 0);
    const std::int64_t last = Nanoseconds(CLOCK_REALTIME_COARSE);
    const std::int64_t microseconds = std::int64_t{middle.tv_sec} * 1000000 + middle.tv_usec;
    EXPECT_LE(first / 1000, microseconds);
    EXPECT_LE(microseconds, last / 1000);
    EXPECT_LE(last / Second, time(nullptr));
    EXPECT_LE(std::int64_t{time(nullptr)}, Board().WallNanoSeconds() / Second);
}

TEST_F(TimeTest, a_jump_back_moves_the_wall_clock_and_no_other) {
    const std::int64_t wall = Nanoseconds(CLOCK_REALTIME);
    const std::int64_t steady = Nanoseconds(CLOCK_MONOTONIC);
    const double run = Board().Seconds();
    Board().JumpClock(-1e6);
    EXPECT_LT(Nanoseconds(CLOCK_REALTIME), wall - 900000 * Second);
    EXPECT_GE(Nanoseconds(CLOCK_MONOTONIC), steady);
    EXPECT_GE(Board().Seconds(), run);
}

TEST_F(TimeTest, a_sleep_takes_its_simulated_length) {
    const std::int64_t before = Nanoseconds(CLOCK_MONOTONIC);
    EXPECT_EQ(sleep(20), 0U);
    EXPECT_EQ(usleep(20 * 1000000), 0);
    const timespec length{20, 500};
    EXPECT_EQ(nanosleep(&length, nullptr), 0);
    EXPECT_EQ(clock_nanosleep(CLOCK_MONOTONIC, 0, &length, nullptr), 0);
    EXPECT_GE(Nanoseconds(CLOCK_MONOTONIC) - before, 80 * Second);
}

TEST_F(TimeTest, a_sleep_until_a_moment_ends_at_that_moment) {
    const timespec end = In(CLOCK_REALTIME, 30);
    EXPECT_EQ(clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, &end, nullptr), 0);
    EXPECT_GE(Nanoseconds(CLOCK_REALTIME), end.tv_sec * Second + end.tv_nsec);
}

TEST_F(TimeTest, a_wrong_sleep_is_invalid) {
    const timespec wrong{1, Second};
    EXPECT_EQ(nanosleep(&wrong, nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(TimeTest, a_busy_wait_takes_its_simulated_length) {
    const std::int64_t before = Nanoseconds(CLOCK_MONOTONIC);
    const clock_t start = clock();
    while (clock() - start < 20 * CLOCKS_PER_SEC) {
    }
    EXPECT_GE(Nanoseconds(CLOCK_MONOTONIC) - before, 20 * Second);
}

TEST_F(TimeTest, a_semaphore_wait_times_out_at_its_simulated_moment) {
    sem_t semaphore;
    ASSERT_EQ(sem_init(&semaphore, 0, 0), 0);
    const timespec end = In(CLOCK_REALTIME, 30);
    EXPECT_EQ(sem_timedwait(&semaphore, &end), -1);
    EXPECT_EQ(errno, ETIMEDOUT);
    EXPECT_GE(Nanoseconds(CLOCK_REALTIME), end.tv_sec * Second + end.tv_nsec);
    sem_destroy(&semaphore);
}

TEST_F(TimeTest, a_post_ends_a_semaphore_wait_of_a_year) {
    sem_t semaphore;
    ASSERT_EQ(sem_init(&semaphore, 0, 0), 0);
    std::thread poster([&semaphore] { sem_post(&semaphore); });
    const timespec end = In(CLOCK_REALTIME, 31536000);
    EXPECT_EQ(sem_timedwait(&semaphore, &end), 0);
    poster.join();
    sem_destroy(&semaphore);
}

TEST_F(TimeTest, a_semaphore_wait_with_too_many_nanoseconds_is_invalid_as_in_libc) {
    sem_t semaphore;
    ASSERT_EQ(sem_init(&semaphore, 0, 1), 0);
    timespec end = In(CLOCK_REALTIME, 30);
    end.tv_nsec = 1000000001;
    EXPECT_EQ(sem_timedwait(&semaphore, &end), -1);
    EXPECT_EQ(errno, EINVAL);
    sem_destroy(&semaphore);
}

TEST_F(TimeTest, a_condition_wait_times_out_at_its_simulated_moment) {
    std::mutex mutex;
    std::condition_variable condition;
    std::unique_lock lock(mutex);
    const std::int64_t before = Nanoseconds(CLOCK_MONOTONIC);
    EXPECT_FALSE(condition.wait_for(lock, std::chrono::seconds(30), [] { return false; }));
    EXPECT_GE(Nanoseconds(CLOCK_MONOTONIC) - before, 30 * Second);
}

TEST_F(TimeTest, a_plain_condition_wait_follows_the_wall_clock) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
    const timespec end = In(CLOCK_REALTIME, 30);
    pthread_mutex_lock(&mutex);
    EXPECT_EQ(pthread_cond_timedwait(&condition, &mutex, &end), ETIMEDOUT);
    pthread_mutex_unlock(&mutex);
    EXPECT_GE(Nanoseconds(CLOCK_REALTIME), end.tv_sec * Second + end.tv_nsec);
}

TEST_F(TimeTest, a_condition_made_for_the_steady_clock_follows_that) {
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_t condition;
    pthread_cond_init(&condition, &attributes);
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    const timespec end = In(CLOCK_MONOTONIC, 30);
    pthread_mutex_lock(&mutex);
    EXPECT_EQ(pthread_cond_timedwait(&condition, &mutex, &end), ETIMEDOUT);
    pthread_mutex_unlock(&mutex);
    EXPECT_GE(Nanoseconds(CLOCK_MONOTONIC), end.tv_sec * Second + end.tv_nsec);
    pthread_cond_destroy(&condition);
    pthread_condattr_destroy(&attributes);
}

TEST_F(TimeTest, a_timed_lock_gives_up_at_its_simulated_moment) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_mutex_lock(&mutex);
    std::thread other([&mutex] {
        const timespec end = In(CLOCK_REALTIME, 30);
        EXPECT_EQ(pthread_mutex_timedlock(&mutex, &end), ETIMEDOUT);
        EXPECT_GE(Nanoseconds(CLOCK_REALTIME), end.tv_sec * Second + end.tv_nsec);
    });
    other.join();
    pthread_mutex_unlock(&mutex);
}

TEST_F(TimeTest, poll_and_select_time_out_after_their_simulated_length) {
    int pipes[2];
    ASSERT_EQ(pipe(pipes), 0);
    const std::int64_t before = Nanoseconds(CLOCK_MONOTONIC);
    pollfd files{pipes[0], POLLIN, 0};
    EXPECT_EQ(poll(&files, 1, 30000), 0);
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(pipes[0], &readable);
    timeval wait{30, 0};
    EXPECT_EQ(select(pipes[0] + 1, &readable, nullptr, nullptr, &wait), 0);
    EXPECT_GE(Nanoseconds(CLOCK_MONOTONIC) - before, 60 * Second);
    EXPECT_EQ(write(pipes[1], "x", 1), 1);
    EXPECT_EQ(poll(&files, 1, -1), 1);
    close(pipes[0]);
    close(pipes[1]);
}

TEST_F(TimeTest, waits_in_progress_follow_a_change_of_the_speed) {
    Board().SetSpeed(0.1);
    sem_t semaphore;
    ASSERT_EQ(sem_init(&semaphore, 0, 0), 0);
    // Each would take an hour and more at the old speed.
    std::thread sleeper([] { sleep(400); });
    std::thread waiter([&semaphore] {
        const timespec end = In(CLOCK_REALTIME, 400);
        EXPECT_EQ(sem_timedwait(&semaphore, &end), -1);
    });
    std::thread poller([] { poll(nullptr, 0, 400000); });
    Board().SetSpeed(1000.0);
    sleeper.join();
    waiter.join();
    poller.join();
    EXPECT_GE(Board().Seconds(), 400.0);
    sem_destroy(&semaphore);
}

TEST_F(TimeTest, a_change_of_the_speed_makes_no_jump) {
    const std::int64_t before = Nanoseconds(CLOCK_MONOTONIC);
    Board().SetSpeed(0.1);
    const std::int64_t after = Nanoseconds(CLOCK_MONOTONIC);
    EXPECT_GE(after, before);
    EXPECT_LT(after - before, 86400 * Second);
}

TEST_F(TimeTest, the_speed_is_held_to_its_range) {
    Board().SetSpeed(1e9);
    EXPECT_DOUBLE_EQ(Board().Speed(), 1000.0);
    Board().SetSpeed(0.0);
    EXPECT_DOUBLE_EQ(Board().Speed(), 0.1);
}

TEST_F(TimeTest, a_signal_ends_a_sleep_with_what_is_left) {
    static sem_t ready;
    sem_init(&ready, 0, 0);
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    static std::atomic<bool> done;
    done = false;
    std::thread sleeper([] {
        sem_post(&ready);
        const timespec length{400000, 0};
        timespec left{};
        EXPECT_EQ(nanosleep(&length, &left), -1);
        EXPECT_EQ(errno, EINTR);
        EXPECT_GT(left.tv_sec, 0);
        done = true;
    });
    sem_wait(&ready);
    while (!done) {  // until the sleeper has truly begun to sleep
        pthread_kill(sleeper.native_handle(), SIGUSR1);
        sched_yield();
    }
    sleeper.join();
    sem_destroy(&ready);
}

TEST_F(TimeTest, processor_time_of_a_thread_is_the_machines) {
    timespec now{};
    EXPECT_EQ(clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now), 0);
    EXPECT_EQ(clock_gettime(12345, &now), -1);
}

TEST_F(TimeTest, a_detached_process_has_the_machines_time_again) {
    Bench::DetachThisProcess();
    EXPECT_GT(time(nullptr), Start + 10 * 365 * 86400);
    Bench::AttachThisProcess(Board());
    EXPECT_LT(time(nullptr), Start + 86400);
}

}  // namespace
