#include <semaphore.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <ctime>
#include <fstream>
#include <string>
#include <thread>

#include "Bench/Board/BoardState.h"
#include "Tests/Support/BoardFixture.h"

namespace {

constexpr double Slowest = 0.1;
constexpr double Fastest = 1000.0;
constexpr int WaitSeconds = 300;

Bench::BoardSetup Slow() {
    Bench::BoardSetup setup;
    setup.speed = Slowest;
    return setup;
}

bool Sleeps(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(file, line);
    const std::size_t name = line.rfind(')');
    return name != std::string::npos && line.compare(name, 3, ") S") == 0;
}

// A semaphore wait in progress while time becomes ten thousand times as fast, until well after its end.
class HeldSpeedTest : public BoardTest {
protected:
    HeldSpeedTest() : BoardTest(Slow()) { sem_init(&m_semaphore, 0, 0); }
    ~HeldSpeedTest() override { sem_destroy(&m_semaphore); }

    // 0 where the post at the end has ended it, or ETIMEDOUT.
    int WaitAcrossTheChange() {
        timespec until{};
        clock_gettime(CLOCK_REALTIME, &until);
        until.tv_sec += WaitSeconds;
        std::atomic<pid_t> waiter{0};
        int result = -1;
        std::thread thread([&] {
            waiter = static_cast<pid_t>(syscall(SYS_gettid));
            result = sem_timedwait(&m_semaphore, &until) == 0 ? 0 : errno;
        });
        while (waiter == 0 || !Sleeps(waiter)) {
            std::this_thread::yield();
        }
        Board().SetSpeed(Fastest);
        const double end = Board().Seconds() + 2 * WaitSeconds;
        while (Board().Seconds() < end) {
            std::this_thread::yield();
        }
        sem_post(&m_semaphore);
        thread.join();
        return result;
    }

private:
    sem_t m_semaphore{};
};

}  // namespace

TEST_F(HeldSpeedTest, a_wait_in_progress_is_one_wait_of_the_kernel) {
    Board().HoldSpeed(true);
    EXPECT_EQ(WaitAcrossTheChange(), 0);
}

TEST_F(HeldSpeedTest, after_the_hold_a_wait_in_progress_follows_the_speed) {
    Board().HoldSpeed(true);
    Board().HoldSpeed(false);
    EXPECT_EQ(WaitAcrossTheChange(), ETIMEDOUT);
}

TEST_F(HeldSpeedTest, a_fresh_run_is_not_held) {
    Board().HoldSpeed(true);
    Board().Reset(Slow());
    EXPECT_EQ(WaitAcrossTheChange(), ETIMEDOUT);
}
