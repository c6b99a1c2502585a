// Threads of a program in exact time.
#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <future>
#include <thread>

#include "Tests/Bench/Deterministic/ExactFixture.h"

namespace {

class ThreadInExactTime : public ExactTest {
protected:
    template <typename Action>
    static pthread_t Start(Action& action, int state = PTHREAD_CREATE_JOINABLE) {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setdetachstate(&attributes, state);
        pthread_t thread{};
        EXPECT_EQ(pthread_create(
                      &thread, &attributes, [](void* argument) -> void* { return (*static_cast<Action*>(argument))(); },
                      &action),
                  0);
        pthread_attr_destroy(&attributes);
        return thread;
    }

    static void* Join(pthread_t thread) {
        void* result = nullptr;
        EXPECT_EQ(pthread_join(thread, &result), 0);
        return result;
    }
};

// A local static whose initialization takes ten seconds.
struct Slow {
    Slow() : made(++count) { std::this_thread::sleep_for(std::chrono::seconds(10)); }
    int made;
    static int count;
};
int Slow::count = 0;

Slow& TheSlow() {
    static Slow slow;
    return slow;
}

}  // namespace

TEST_F(ThreadInExactTime, is_joined_when_it_ends_and_gives_its_result) {
    int answer = 0;
    auto action = [&answer]() -> void* {
        Rest(3600.0);
        return &answer;
    };
    EXPECT_EQ(Join(Start(action)), &answer);
    EXPECT_NEAR(Board().Seconds(), 3600.0, 1e-3);
}

TEST_F(ThreadInExactTime, that_has_ended_can_be_joined_later) {
    int answer = 0;
    auto action = [&answer]() -> void* { return &answer; };
    const pthread_t thread = Start(action);
    Rest(5.0);
    EXPECT_EQ(Join(thread), &answer);
    EXPECT_NEAR(Board().Seconds(), 5.0, 1e-3);
}

TEST_F(ThreadInExactTime, ends_by_pthread_exit_from_any_depth) {
    int answer = 0;
    bool unwound = false;
    struct Unwinds {
        bool& done;
        ~Unwinds() { done = true; }
    };
    auto deep = [&]() {
        const Unwinds unwinds{unwound};
        pthread_exit(&answer);
    };
    auto action = [&]() -> void* {
        deep();
        return nullptr;
    };
    EXPECT_EQ(Join(Start(action)), &answer);
    EXPECT_TRUE(unwound);
}

TEST_F(ThreadInExactTime, that_is_detached_goes_on_to_its_end) {
    std::atomic<int> ended{0};
    auto action = [&ended]() -> void* {
        Rest(10.0);
        ++ended;
        return nullptr;
    };
    EXPECT_EQ(pthread_detach(Start(action)), 0);
    Start(action, PTHREAD_CREATE_DETACHED);
    auto quick = []() -> void* { return nullptr; };
    const pthread_t over = Start(quick);
    Rest(9.0);
    EXPECT_EQ(pthread_detach(over), 0);  // after its end
    EXPECT_EQ(ended, 0);
    Rest(2.0);
    EXPECT_EQ(ended, 2);
}

// Each takes a place in the simulation, which has 512.
TEST_F(ThreadInExactTime, gives_its_place_back) {
    auto action = []() -> void* { return nullptr; };
    for (int i = 0; i < 400; ++i) {
        Join(Start(action));
        pthread_detach(Start(action));
        Start(action, PTHREAD_CREATE_DETACHED);
        Rest(0.001);
    }
}

TEST_F(ThreadInExactTime, that_yields_lets_others_run) {
    std::atomic<bool> done{false};
    std::thread other([&done] { done = true; });
    int yields = 0;
    for (; !done && yields < 10000; ++yields) {
        sched_yield();
    }
    EXPECT_LT(yields, 10000);
    other.join();
}

TEST_F(ThreadInExactTime, begins_without_an_error_number) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 20; ++i) {
        threads.emplace_back([] {
            const int before = errno;
            EXPECT_EQ(before, 0);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(ThreadInExactTime, waits_for_the_initialization_of_a_local_static) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([] { EXPECT_EQ(TheSlow().made, 1); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_NEAR(Board().Seconds(), 10.0, 1e-3);
}

TEST_F(ThreadInExactTime, waits_for_the_words_of_the_cpp_library) {
    std::promise<int> promise;
    std::future<int> future = promise.get_future();
    std::atomic<int> word{0};
    std::thread other([&] {
        Rest(100.0);
        word.store(8);
        word.notify_all();
        promise.set_value(6);
    });
    EXPECT_EQ(future.wait_for(std::chrono::seconds(30)), std::future_status::timeout);
    EXPECT_NEAR(Board().Seconds(), 30.0, 1e-3);
    EXPECT_EQ(future.wait_until(std::chrono::system_clock::now() + std::chrono::seconds(30)),
              std::future_status::timeout);
    EXPECT_NEAR(Board().Seconds(), 60.0, 1e-3);
    word.wait(0);
    EXPECT_NEAR(Board().Seconds(), 100.0, 1e-3);
    EXPECT_EQ(future.get(), 6);
    other.join();
}

// Each hook that a program may call between a call that failed and the look at errno.
TEST_F(ThreadInExactTime, keeps_its_error_number_in_calls_that_succeed) {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
    sem_t semaphore{};
    sem_init(&semaphore, 0, 0);
    timespec now{};
    std::atomic<bool> over{false};
    const std::vector<std::pair<const char*, std::function<void()>>> calls = {
        {"pthread_mutex_lock", [&] { pthread_mutex_lock(&mutex); }},
        {"pthread_cond_timedwait",
         [&] {
             const timespec until = In(1.0);
             pthread_cond_timedwait(&condition, &mutex, &until);
         }},
        {"pthread_cond_signal", [&] { pthread_cond_signal(&condition); }},
        {"pthread_cond_broadcast", [&] { pthread_cond_broadcast(&condition); }},
        {"pthread_mutex_unlock", [&] { pthread_mutex_unlock(&mutex); }},
        {"pthread_mutex_trylock", [&] { pthread_mutex_trylock(&mutex); }},
        {"pthread_mutex_unlock", [&] { pthread_mutex_unlock(&mutex); }},
        {"sem_wait",
         [&] {
             while (sem_trywait(&semaphore) == 0) {
             }
             errno = 77;
             sem_wait(&semaphore);
         }},
        {"sem_post", [&] { sem_post(&semaphore); }},
        {"clock_gettime", [&] { clock_gettime(CLOCK_MONOTONIC, &now); }},
        {"time", [] { time(nullptr); }},
        {"clock", [] { clock(); }},
        {"sched_yield", [] { sched_yield(); }},
        {"nanosleep", [] { Rest(5.0); }},
        {"pthread_create and pthread_join", [] { std::thread([] {}).join(); }},
    };
    std::thread others[] = {std::thread([&] {
                                for (; !over; Rest(0.3)) {
                                    sem_post(&semaphore);
                                    std::thread([] {}).join();
                                }
                            }),
                            std::thread([&] {
                                while (!over) {
                                    sched_yield();
                                    Rest(0.1);
                                }
                            })};
    for (int times = 0; times < 5; ++times) {
        for (const auto& [name, call] : calls) {
            errno = 77;
            call();
            EXPECT_EQ(errno, 77) << name;
        }
    }
    over = true;
    for (std::thread& other : others) {
        other.join();
    }
    sem_destroy(&semaphore);
}
