// What ends a run in exact time with a reason on the standard error.
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "Tests/Bench/Deterministic/ExactFixture.h"
#include "Tests/Support/ReadFile.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Bench {

namespace {

constexpr int Patience = 1;
constexpr int LongPatience = 4;  // for a run that must not meet it on a busy machine

// Blocks outside the simulation until another process would write.
void ReadForEver() {
    int ends[2];
    char next = 0;
    if (pipe(ends) != 0 || read(ends[0], &next, 1) != 1) {
        std::abort();
    }
}

void WaitForEachOther() {
    std::mutex first;
    std::mutex second;
    first.lock();
    std::thread other([&] {
        second.lock();
        first.lock();
    });
    std::this_thread::sleep_for(std::chrono::seconds(1));
    second.lock();
}

}  // namespace

TEST(DeadlockInExactTime, ends_the_process_with_what_each_thread_waits_for) {
    const TemporaryBoard board(ExactBoard(5));
    EXPECT_EXIT(
        {
            Simulation::Begin();
            WaitForEachOther();
        },
        testing::ExitedWithCode(70),
        "exact time: all threads wait for each other\nthread 0 mutex 0x[0-9a-f]+\nthread 1 mutex 0x[0-9a-f]+\n$");
    const ExactView view = board.Get().Exact();
    EXPECT_TRUE(view.over);
    EXPECT_EQ(view.failure, "all threads wait for each other");
    EXPECT_EQ(view.waits.substr(0, 16), "thread 0 mutex 0");
}

TEST(DeadlockInExactTime, keeps_the_events_in_the_file) {
    const TemporaryFolder folder;
    BoardSetup setup = ExactBoard(5);
    setup.exact->traceFile = folder / "trace";
    const TemporaryBoard board(setup);
    EXPECT_EXIT(
        {
            Simulation::Begin();
            WaitForEachOther();
        },
        testing::ExitedWithCode(70), "wait for each other");
    const std::string text = ReadFile(folder / "trace");
    EXPECT_EQ(static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n')), board.Get().Exact().events);
}

TEST(WaitOutsideExactTime, ends_the_process_with_the_stack_of_its_thread) {
    const TemporaryBoard board(ExactBoard(5));
    EXPECT_EXIT(
        {
            Simulation::Begin(Simulation::Stops::Never, Patience);
            std::thread(ReadForEver).join();
        },
        testing::ExitedWithCode(71),
        "exact time: a thread has kept the token for 1 s without a call\\. Its stack:\n.*\\(read\\+.*test_determin");
}

TEST(WaitOutsideExactTime, ends_the_process_also_if_its_thread_takes_no_signal) {
    const TemporaryBoard board(ExactBoard(5));
    EXPECT_EXIT(
        {
            Simulation::Begin(Simulation::Stops::Never, Patience);
            sigset_t all;
            sigfillset(&all);
            pthread_sigmask(SIG_SETMASK, &all, nullptr);
            ReadForEver();
        },
        testing::ExitedWithCode(71),
        "exact time: a thread has kept the token for 1 s without a call\\. It has no stack to show.*token\\.\n$");
}

TEST(WaitOutsideExactTime, is_no_failure_of_a_run_that_the_bench_has_paused) {
    const TemporaryBoard board(ExactBoard(5));
    std::thread outside([&board] {
        EXPECT_TRUE(board.Get().RunUntil(1.0, 60.0));
        board.Get().WaitUntil([] { return false; }, LongPatience + 2.0);  // simulated time does not pass
        board.Get().RunUntil(1e6, 60.0);
    });
    Simulation::Begin(Simulation::Stops::WhenAsked, LongPatience);
    std::this_thread::sleep_for(std::chrono::seconds(100));
    Simulation::End();
    outside.join();
    EXPECT_EQ(board.Get().Exact().failure, "");
}

TEST(BeginOfExactTime, refuses_a_policy_that_is_none) {
    const TemporaryBoard board(ExactBoard(5, "sticky:2"));
    EXPECT_EXIT(Simulation::Begin(), testing::ExitedWithCode(2),
                "^exact time: policy \"sticky:2\": expected a probability above 0, at most 1\n$");
}

TEST(BeginOfExactTime, refuses_a_file_that_can_not_be_made) {
    BoardSetup setup = ExactBoard(5);
    setup.exact->traceFile = "/nowhere/trace";
    const TemporaryBoard board(setup);
    EXPECT_EXIT(Simulation::Begin(), testing::ExitedWithCode(1),
                "^exact time: /nowhere/trace: No such file or directory\n$");
}

TEST(EndOfExactTime, reports_a_file_that_is_not_whole) {
    BoardSetup setup = ExactBoard(5);
    setup.exact->traceFile = "/dev/full";
    const TemporaryBoard board(setup);
    EXPECT_EXIT(
        {
            Simulation::Begin();
            sched_yield();
            Simulation::End();
        },
        testing::ExitedWithCode(1), "^exact time: /dev/full could not take all events\n$");
}

TEST(ThreadsOfExactTime, are_at_most_512) {
    const TemporaryBoard board(ExactBoard(5));
    EXPECT_EXIT(
        {
            Simulation::Begin();
            for (int i = 0; i < 512; ++i) {
                std::thread([] { std::this_thread::sleep_for(std::chrono::hours(1)); }).detach();
            }
        },
        testing::ExitedWithCode(70), "exact time: there are more threads than the simulation can hold\nthread 0 ready");
}

}  // namespace Bench
