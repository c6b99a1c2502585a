// Whole runs in exact time: what the seed decides, and pauses.
#include <semaphore.h>

#include <atomic>
#include <mutex>
#include <set>
#include <thread>

#include "Bench/Board/BoardState.h"
#include "Tests/Bench/Deterministic/ExactFixture.h"
#include "Tests/Support/ReadFile.h"
#include "Tests/Support/TemporaryFolder.h"

namespace Bench {

namespace {

// Threads that meet at a mutex and a semaphore, and the order in which they did.
std::string Course() {
    std::string order;
    std::mutex mutex;
    sem_t semaphore{};
    sem_init(&semaphore, 0, 1);
    std::vector<std::thread> threads;
    for (const char name : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([&, name] {
            for (int i = 0; i < 5; ++i) {
                sem_wait(&semaphore);
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                sem_post(&semaphore);
                const std::lock_guard<std::mutex> lock(mutex);
                order += name;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    sem_destroy(&semaphore);
    return order;
}

struct Outcome {
    std::uint64_t hash = 0;
    std::uint64_t events = 0;
    std::string order;
    double seconds = 0.0;

    bool operator==(const Outcome&) const = default;
};

Outcome RunCourse(const BoardSetup& setup) {
    const TemporaryBoard board(setup);
    std::string order;
    {
        const ExactTime time;
        order = Course();
    }
    const ExactView view = board.Get().Exact();
    EXPECT_TRUE(view.over);
    EXPECT_EQ(view.failure, "");
    return {view.hash, view.events, order, board.Get().Seconds()};
}

// What libraries do once in a process, a sanitizer's among them, is over after a first run.
class RunInExactTime : public testing::Test {
protected:
    static void SetUpTestSuite() { RunCourse(ExactBoard(1)); }
};

constexpr const char* Policies[] = {"random", "sticky", "priority", "until-blocked", "stalls"};

// A run that the bench lets go on from pause to pause: `bench` in a thread outside the simulation, `program` in it.
void RunWithPauses(const TemporaryBoard& board, const std::function<void()>& bench,
                   const std::function<void()>& program) {
    std::thread outside([&] {
        bench();
        board.Get().RunUntil(1e6, 60.0);
    });
    Simulation::Begin(Simulation::Stops::WhenAsked);
    program();
    Simulation::End();
    outside.join();
}

}  // namespace

TEST_F(RunInExactTime, is_the_same_for_the_same_seed) {
    for (const char* policy : Policies) {
        const Outcome first = RunCourse(ExactBoard(5, policy));
        EXPECT_GT(first.events, 100U);
        EXPECT_EQ(RunCourse(ExactBoard(5, policy)), first) << policy;
    }
}

TEST_F(RunInExactTime, is_another_one_for_another_seed) {
    for (const char* policy : Policies) {
        std::set<std::uint64_t> hashes;
        std::set<std::string> orders;
        for (std::uint64_t seed = 1; seed <= 5; ++seed) {
            const Outcome outcome = RunCourse(ExactBoard(seed, policy));
            hashes.insert(outcome.hash);
            orders.insert(outcome.order);
        }
        EXPECT_EQ(hashes.size(), 5U) << policy;
        EXPECT_GT(orders.size(), 1U) << policy;
    }
}

TEST_F(RunInExactTime, is_the_same_with_its_events_in_a_file) {
    const TemporaryFolder folder;
    const Outcome without = RunCourse(ExactBoard(5));
    BoardSetup setup = ExactBoard(5);
    setup.exact->traceFile = folder / "trace";
    EXPECT_EQ(RunCourse(setup), without);
    const std::string text = ReadFile(folder / "trace");
    EXPECT_EQ(static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n')), without.events);
    EXPECT_TRUE(text.starts_with("1 1000.0000"));
}

TEST_F(RunInExactTime, goes_on_with_the_clock_and_the_hash_of_the_board) {
    const TemporaryBoard board(ExactBoard(5));
    ExactView views[2];
    for (ExactView& view : views) {
        const ExactTime time;
        std::this_thread::sleep_for(std::chrono::seconds(100));
        Simulation::End();
        view = board.Get().Exact();
    }
    EXPECT_NEAR(board.Get().Seconds(), 200.0, 1e-3);
    EXPECT_EQ(views[1].events, 2 * views[0].events);
    EXPECT_NE(views[1].hash, views[0].hash);
}

TEST_F(RunInExactTime, ends_a_wait_for_another_thread_by_yields_under_each_policy) {
    for (const char* policy : Policies) {
        const TemporaryBoard board(ExactBoard(5, policy));
        const ExactTime time;
        std::atomic<bool> done{false};
        std::thread other([&done] { done = true; });
        int yields = 0;
        for (; !done && yields < 100000; ++yields) {
            sched_yield();
        }
        EXPECT_LT(yields, 100000) << policy;
        other.join();
    }
}

TEST_F(RunInExactTime, that_the_bench_stops_pauses_at_the_asked_moments) {
    const TemporaryBoard board(ExactBoard(5));
    std::vector<double> seen;
    std::vector<std::string> waits;
    RunWithPauses(
        board,
        [&] {
            for (const double moment : {0.0, 2.5, 7.0, 1000.0}) {
                EXPECT_TRUE(board.Get().RunUntil(moment, 60.0));
                seen.push_back(board.Get().Seconds());
                waits.push_back(board.Get().Exact().waits);
            }
        },
        [] {
            std::thread other([] { std::this_thread::sleep_for(std::chrono::seconds(5)); });
            other.join();
            std::this_thread::sleep_for(std::chrono::seconds(2000));
        });
    ASSERT_EQ(seen.size(), 4U);
    EXPECT_NEAR(seen[0], 0.0, 1e-6);  // at the first call
    EXPECT_EQ(seen[1], 2.5);
    EXPECT_EQ(seen[2], 7.0);
    EXPECT_EQ(seen[3], 1000.0);
    EXPECT_EQ(waits[0].substr(0, 14), "thread 0 ready");
    EXPECT_NE(waits[1].find("thread 0 thread 0x"), std::string::npos) << waits[1];
    EXPECT_NE(waits[1].find("thread 1 word 0x"), std::string::npos) << waits[1];
    EXPECT_NE(waits[1].find(" until 5.000"), std::string::npos) << waits[1];
    EXPECT_EQ(waits[2].find("thread 1"), std::string::npos) << waits[2];
}

TEST_F(RunInExactTime, is_the_same_with_pauses) {
    const Outcome without = RunCourse(ExactBoard(5));
    const TemporaryBoard board(ExactBoard(5));
    std::string order;
    RunWithPauses(
        board,
        [&board] {
            for (int i = 0; i < 20; ++i) {
                EXPECT_TRUE(board.Get().RunUntil(0.0007 * i, 60.0));
            }
        },
        [&order] { order = Course(); });
    EXPECT_EQ(order, without.order);
    EXPECT_EQ(board.Get().Exact().hash, without.hash);
}

TEST_F(RunInExactTime, takes_a_change_in_a_pause_at_once) {
    const TemporaryBoard board(ExactBoard(5));
    double waited = 0.0;
    RunWithPauses(
        board,
        [&board] {
            EXPECT_TRUE(board.Get().RunUntil(10.0, 60.0));
            board.Get().JumpClock(60.0);
        },
        [&board, &waited] {
            sem_t semaphore{};
            sem_init(&semaphore, 0, 0);
            const timespec until = TimespecOf(board.Get().WallNanoSeconds() + 100 * NanoSecondsPerSecond);
            sem_timedwait(&semaphore, &until);
            waited = board.Get().Seconds();
        });
    EXPECT_NEAR(waited, 40.0, 1e-3);
}

TEST_F(RunInExactTime, is_quiet_in_a_pause_if_no_thread_waits_for_a_moment) {
    const TemporaryBoard board(ExactBoard(5));
    bool quiet[2] = {};
    RunWithPauses(
        board,
        [&board, &quiet] {
            EXPECT_TRUE(board.Get().RunUntil(10.0, 60.0));
            quiet[0] = board.Get().Exact().quiet;
            EXPECT_TRUE(board.Get().RunUntil(80.0, 60.0));
            quiet[1] = board.Get().Exact().quiet;
            board.Get().SetSettings(board.Get().Settings());  // wakes what waits for the board
        },
        [&board] {
            std::this_thread::sleep_for(std::chrono::seconds(50));
            Simulation::Block(Wait::Word, &board.Get().State().changes);
        });
    EXPECT_FALSE(quiet[0]);
    EXPECT_TRUE(quiet[1]);
}

}  // namespace Bench
