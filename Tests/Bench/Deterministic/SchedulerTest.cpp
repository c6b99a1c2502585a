#include "Bench/Deterministic/Scheduler.h"

#include <gtest/gtest.h>

namespace Bench {

namespace {

Policy PolicyOf(const char* text) {
    std::string error;
    return *Policy::Read(text, 7, error);
}

class Threads : public testing::Test {
protected:
    Scheduler scheduler{PolicyOf("until-blocked"), 5000};
    int first = *scheduler.Add();
    int second = *scheduler.Add();
    int third = *scheduler.Add();
    int object = 0;
    int other = 0;
};

}  // namespace

TEST_F(Threads, one_that_waits_is_not_chosen_until_it_is_woken) {
    scheduler.Block(first, Wait::Mutex, &object, Scheduler::Forever);
    scheduler.Block(third, Wait::Mutex, &object, Scheduler::Forever);
    EXPECT_EQ(scheduler.Next(first), second);
    scheduler.Block(second, Wait::Mutex, &other, Scheduler::Forever);
    EXPECT_EQ(scheduler.Next(second), std::nullopt);
    EXPECT_EQ(scheduler.Wake(Wait::Mutex, &other), 1);
    EXPECT_EQ(scheduler.Next(second), second);
    EXPECT_FALSE(scheduler.TimedOut(second));
}

TEST_F(Threads, a_wake_up_is_for_that_kind_of_wait_and_that_object_alone) {
    scheduler.Block(first, Wait::Mutex, &object, Scheduler::Forever);
    scheduler.Block(second, Wait::Condition, &object, Scheduler::Forever);
    scheduler.Block(third, Wait::Condition, &other, Scheduler::Forever);
    EXPECT_EQ(scheduler.Wake(Wait::Condition, &object), 1);
    EXPECT_EQ(scheduler.Next(first), second);
}

TEST_F(Threads, no_more_are_woken_than_asked_for) {
    for (const int thread : {first, second, third}) {
        scheduler.Block(thread, Wait::Condition, &object, Scheduler::Forever);
    }
    EXPECT_EQ(scheduler.Wake(Wait::Condition, &object, 2), 2);
    EXPECT_EQ(scheduler.Wake(Wait::Condition, &object, 2), 1);
}

TEST_F(Threads, a_deadline_makes_ready_when_the_clock_has_reached_it) {
    scheduler.Block(first, Wait::Semaphore, &object, 9000);
    scheduler.Block(second, Wait::Semaphore, &object, 8000);
    scheduler.Block(third, Wait::Semaphore, &object, Scheduler::Forever);
    EXPECT_EQ(scheduler.Next(first), std::nullopt);
    EXPECT_EQ(scheduler.FirstDeadline(), 8000);
    scheduler.Spend(2999);
    EXPECT_EQ(scheduler.Next(first), std::nullopt);
    scheduler.Spend(1);
    EXPECT_EQ(scheduler.Next(first), second);
    EXPECT_TRUE(scheduler.TimedOut(second));
    EXPECT_EQ(scheduler.FirstDeadline(), 9000);
}

TEST_F(Threads, one_that_has_ended_is_not_chosen_and_gives_its_number_back) {
    scheduler.End(second);
    scheduler.Block(first, Wait::Mutex, &object, Scheduler::Forever);
    EXPECT_EQ(scheduler.Next(second), third);
    EXPECT_EQ(scheduler.Living(), 2);
    EXPECT_EQ(scheduler.Add(), second);
    EXPECT_EQ(scheduler.At(second).ordinal, 3);
}

TEST_F(Threads, the_number_of_threads_is_bounded) {
    for (int i = 3; i < Scheduler::MaxThreads; ++i) {
        ASSERT_TRUE(scheduler.Add());
    }
    EXPECT_EQ(scheduler.Add(), std::nullopt);
}

}  // namespace Bench
