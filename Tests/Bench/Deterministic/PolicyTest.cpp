#include "Bench/Deterministic/Policy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Bench {

namespace {

constexpr std::uint64_t Seed = 11;

Policy Made(const std::string& text, std::uint64_t seed = Seed) {
    std::string error;
    std::optional<Policy> policy = Policy::Read(text, seed, error);
    EXPECT_TRUE(policy) << error;
    return *policy;
}

std::string ErrorOf(const std::string& text) {
    std::string error;
    EXPECT_FALSE(Policy::Read(text, Seed, error)) << text;
    return error;
}

// Four threads that are always ready, and the choices of a policy among them.
class Four {
public:
    explicit Four(Policy policy) : m_policy(policy) {
        for (std::size_t i = 0; i < priorities.size(); ++i) {
            m_ready[i] = {static_cast<int>(i), &priorities[i]};
        }
    }

    std::size_t Choose() { return m_running = m_policy.Choose(m_ready, m_running); }

    std::vector<std::size_t> Choices(int count) {
        std::vector<std::size_t> choices;
        for (int i = 0; i < count; ++i) {
            choices.push_back(Choose());
        }
        return choices;
    }

    // The choices, out of a thousand, that leave the running thread.
    int Changes() {
        int changes = 0;
        for (int i = 0; i < 1000; ++i) {
            const std::size_t before = m_running;
            changes += Choose() != before ? 1 : 0;
        }
        return changes;
    }

    std::array<std::int64_t, 4> priorities{40, 90, 70, 20};

private:
    Policy m_policy;
    std::array<Candidate, 4> m_ready{};
    std::size_t m_running = 2;
};

}  // namespace

TEST(PolicyText, names_a_policy_and_mostly_a_probability) {
    for (const char* text :
         {"random", "sticky", "sticky:0.25", "priority", "priority:1", "until-blocked", "stalls", "stalls:1e-6"}) {
        Made(text);
    }
}

TEST(PolicyText, that_is_no_policy_is_refused_with_a_sentence) {
    constexpr const char* Names = " (random, sticky, priority, until-blocked or stalls)";
    EXPECT_EQ(ErrorOf("fair"), std::string("unknown policy \"fair\"") + Names);
    EXPECT_EQ(ErrorOf(""), std::string("unknown policy \"\"") + Names);
    EXPECT_EQ(ErrorOf("sticky0.5"), std::string("unknown policy \"sticky0.5\"") + Names);
}

TEST(PolicyText, takes_a_probability_above_0_up_to_1) {
    for (const char* number : {"0", "-0.5", "1.001", "nan", "inf", "", "0.5x", " 0.5", "0,5"}) {
        const std::string text = std::string("sticky:") + number;
        EXPECT_EQ(ErrorOf(text), "policy \"" + text + "\": expected a probability above 0, at most 1");
    }
}

TEST(PolicyText, has_no_probability_if_nothing_is_drawn) {
    EXPECT_EQ(ErrorOf("random:0.5"), "policy \"random:0.5\": it takes no probability");
    EXPECT_EQ(ErrorOf("until-blocked:0.5"), "policy \"until-blocked:0.5\": it takes no probability");
}

TEST(PolicyChoice, is_the_same_for_the_same_seed_and_differs_for_another) {
    for (const char* text : {"random", "sticky:0.5", "priority:0.5", "stalls"}) {
        const std::vector<std::size_t> choices = Four(Made(text)).Choices(100);
        EXPECT_EQ(Four(Made(text)).Choices(100), choices) << text;
        EXPECT_NE(Four(Made(text, Seed + 1)).Choices(100), choices) << text;
    }
}

TEST(PolicyChoice, falls_on_each_thread_if_it_is_random) {
    for (const char* text : {"random", "stalls"}) {
        Four threads(Made(text));
        std::array<int, 4> chosen{};
        for (const std::size_t choice : threads.Choices(4000)) {
            ++chosen[choice];
        }
        for (const int count : chosen) {
            EXPECT_NEAR(count, 1000, 150) << text;
        }
    }
}

TEST(PolicyChoice, of_sticky_is_mostly_the_running_thread) {
    // A change is drawn with the probability, and then falls on one of the three others in three of four cases.
    EXPECT_NEAR(Four(Made("sticky:0.2")).Changes(), 150, 50);
    EXPECT_NEAR(Four(Made("sticky")).Changes(), 37, 25);
    EXPECT_NEAR(Four(Made("sticky:1")).Changes(), 750, 60);
}

TEST(PolicyChoice, of_until_blocked_is_the_running_thread_if_there_is_one) {
    Four threads(Made("until-blocked"));
    EXPECT_EQ(threads.Changes(), 0);
    Policy policy = Made("until-blocked");
    std::array<Candidate, 3> ready{};
    std::array<int, 3> chosen{};
    for (int i = 0; i < 300; ++i) {
        ++chosen[policy.Choose(ready, std::nullopt)];
    }
    for (const int count : chosen) {
        EXPECT_NEAR(count, 100, 40);
    }
}

TEST(PolicyChoice, of_priority_is_the_highest) {
    Four threads(Made("priority:1e-9"));
    EXPECT_EQ(threads.Choices(50), std::vector<std::size_t>(50, 1));
    EXPECT_EQ(threads.priorities, (std::array<std::int64_t, 4>{40, 90, 70, 20}));
}

TEST(PolicyChoice, of_priority_puts_the_running_thread_below_all_others_now_and_then) {
    Four threads(Made("priority:1"));
    // The third runs at first; then each is put below all others when it has run once.
    EXPECT_EQ(threads.Choices(8), (std::vector<std::size_t>{1, 0, 3, 2, 1, 0, 3, 2}));
    EXPECT_NEAR(Four(Made("priority:0.1")).Changes(), 100, 40);
}

TEST(PolicyChoice, gives_new_threads_distinct_priorities_above_those_put_down) {
    Policy policy = Made("priority");
    std::vector<std::int64_t> priorities;
    for (int i = 0; i < 100; ++i) {
        priorities.push_back(policy.PriorityOfNewThread());
        EXPECT_GE(priorities.back(), 0);
    }
    std::sort(priorities.begin(), priorities.end());
    EXPECT_EQ(std::adjacent_find(priorities.begin(), priorities.end()), priorities.end());
}

TEST(PolicyStall, holds_a_thread_with_its_probability_for_1_ns_to_100_ms) {
    Policy policy = Made("stalls:0.25");
    int held = 0;
    std::array<int, 8> decades{};
    for (int i = 0; i < 8000; ++i) {
        const std::int64_t stall = policy.Stall();
        ASSERT_GE(stall, 0);
        ASSERT_LE(stall, 100000000);
        held += stall > 0 ? 1 : 0;
        decades[static_cast<std::size_t>(stall == 0 ? 0 : std::min(7.0, std::log10(stall)))] += stall > 0 ? 1 : 0;
    }
    EXPECT_NEAR(held, 2000, 200);
    for (const int count : decades) {
        EXPECT_NEAR(count, 250, 75);
    }
}

TEST(PolicyStall, is_of_no_other_policy) {
    for (const char* text : {"random", "sticky:1", "priority:1", "until-blocked"}) {
        Policy policy = Made(text);
        for (int i = 0; i < 1000; ++i) {
            ASSERT_EQ(policy.Stall(), 0) << text;
        }
    }
}

}  // namespace Bench
