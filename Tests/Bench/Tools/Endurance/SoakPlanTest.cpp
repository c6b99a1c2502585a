#include "Bench/Tools/Endurance/SoakPlan.h"

#include <gtest/gtest.h>

#include <set>

#include "Bench/Board/Board.h"

namespace {

std::vector<std::string> Events(std::uint32_t seed, int count) {
    Bench::SoakPlan plan(seed, {});
    std::vector<std::string> events;
    for (int event = 0; event < count; ++event) {
        events.push_back(plan.Next().Describe());
    }
    return events;
}

}  // namespace

TEST(SoakPlan, depends_on_the_seed_alone) {
    EXPECT_EQ(Events(7, 500), Events(7, 500));
    EXPECT_NE(Events(7, 500), Events(8, 500));
}

TEST(SoakPlan, is_in_order_of_time) {
    Bench::SoakPlan plan(7, {});
    double last = 0.0;
    for (int event = 0; event < 2000; ++event) {
        const Bench::SoakEvent next = plan.Next();
        ASSERT_GE(next.second, last);
        last = next.second;
    }
}

TEST(SoakPlan, ends_each_fault_before_its_next_start) {
    Bench::SoakPlan plan(7, {});
    std::set<std::string> active;
    std::set<std::string> seen;
    for (int event = 0; event < 20000; ++event) {
        const Bench::SoakEvent next = plan.Next();
        const std::string name = next.fault.substr(0, next.fault.find('='));
        if (next.action == Bench::SoakAction::FaultOn) {
            ASSERT_TRUE(active.insert(name).second) << name;
            seen.insert(next.fault);
        } else if (next.action == Bench::SoakAction::FaultOff) {
            ASSERT_EQ(active.erase(name), 1U) << name;
        }
    }
    EXPECT_EQ(seen.size(), Bench::SoakPlan::Faults().size());
}

TEST(SoakPlan, has_every_fault_of_the_board) {
    std::set<std::string> planned;
    for (const std::string& fault : Bench::SoakPlan::Faults()) {
        std::string error;
        EXPECT_TRUE(Bench::Board::CheckFault(fault, error)) << error;
        planned.insert(fault.substr(0, fault.find('=')));
    }
    planned.insert("card-in");
    std::set<std::string> known;
    for (const Bench::FaultInfo& fault : Bench::Board::KnownFaults()) {
        known.insert(fault.name);
    }
    EXPECT_EQ(planned, known);
}
