#include "Bench/Tools/Endurance/SweepPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

namespace {

using Calls = std::map<std::string, std::uint64_t>;

std::vector<std::string> Plan(const Calls& calls, const Bench::SweepChoice& choice) {
    std::vector<std::string> texts;
    for (const Bench::SweepTrial& trial : Bench::PlanSweep(calls, choice)) {
        texts.push_back(trial.kind + " " + std::to_string(trial.n));
    }
    return texts;
}

// The widest stretch of 1 to `count` without any of the numbers.
int WidestGap(std::vector<int> numbers, int count) {
    std::sort(numbers.begin(), numbers.end());
    int widest = 0;
    int last = 0;
    for (const int number : numbers) {
        widest = std::max(widest, number - last - 1);
        last = number;
    }
    return std::max(widest, count - last);
}

Bench::SweepChoice Seed(std::uint64_t seed) {
    Bench::SweepChoice choice;
    choice.seed = seed;
    return choice;
}

}  // namespace

TEST(SweepPlan, takes_each_number_once) {
    for (const std::uint32_t count : {1U, 2U, 3U, 64U, 65U, 1000U}) {
        std::vector<int> all(count);
        std::iota(all.begin(), all.end(), 1);
        EXPECT_THAT(Bench::SpreadOrder(count, 7), UnorderedElementsAreArray(all)) << count;
    }
    EXPECT_THAT(Bench::SpreadOrder(0, 7), IsEmpty());
}

TEST(SweepPlan, halves_the_gaps_again_and_again) {
    EXPECT_THAT(Bench::SpreadOrder(8, 0), ElementsAre(1, 5, 3, 7, 2, 6, 4, 8));
}

TEST(SweepPlan, any_first_part_is_spread_over_all) {
    constexpr int Count = 9281;
    const std::vector<int> order = Bench::SpreadOrder(Count, 20261121);
    for (const int length : {10, 100, 1000, 5000}) {
        EXPECT_LE(WidestGap({order.begin(), order.begin() + length}, Count), 4 * Count / length) << length;
    }
}

TEST(SweepPlan, starts_elsewhere_with_another_seed) {
    EXPECT_EQ(Bench::SpreadOrder(1000, 3), Bench::SpreadOrder(1000, 3));
    EXPECT_NE(Bench::SpreadOrder(1000, 3).front(), Bench::SpreadOrder(1000, 4).front());
}

TEST(SweepPlan, takes_turns_between_the_kinds) {
    EXPECT_THAT(Plan({{"mount", 1}, {"open", 3}}, Seed(0)), ElementsAre("mount 1", "open 1", "open 3", "open 2"));
}

TEST(SweepPlan, leaves_out_kinds_that_are_not_chosen_or_never_called) {
    Bench::SweepChoice choice = Seed(0);
    choice.kinds = {"open", "fork"};
    EXPECT_THAT(Plan({{"fork", 0}, {"mount", 1}, {"open", 2}}, choice), ElementsAre("open 1", "open 2"));
}

TEST(SweepPlan, limits_the_calls_of_each_kind) {
    Bench::SweepChoice choice = Seed(0);
    choice.max = 2;
    EXPECT_THAT(Plan({{"mount", 1}, {"open", 8}}, choice), ElementsAre("mount 1", "open 1", "open 5"));
}

TEST(SweepPlan, takes_one_number_of_each_kind) {
    Bench::SweepChoice choice = Seed(5);
    choice.number = 2;
    EXPECT_THAT(Plan({{"mount", 1}, {"open", 8}}, choice), ElementsAre("open 2"));
}
