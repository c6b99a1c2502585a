#include "Bench/Tools/Endurance/SweepLedger.h"

#include <gtest/gtest.h>

#include "Tests/Support/NewProcess.h"

using Bench::SweepLedger;
using Bench::SweepOutcome;

TEST(SweepLedger, starts_each_trial_once) {
    SweepLedger ledger(2);
    ASSERT_TRUE(ledger.IsMade());
    EXPECT_EQ(ledger.Begin(), 0U);
    EXPECT_EQ(ledger.Begin(), 1U);
    EXPECT_EQ(ledger.Begin(), std::nullopt);
    EXPECT_EQ(ledger.Begin(), std::nullopt);
}

TEST(SweepLedger, knows_trials_that_were_not_started) {
    SweepLedger ledger(2);
    ledger.Begin();
    ledger.Note(0, SweepOutcome::NotReached);
    EXPECT_EQ(ledger.OutcomeOf(0), SweepOutcome::NotReached);
    EXPECT_EQ(ledger.OutcomeOf(1), std::nullopt);
}

TEST(SweepLedger, is_shared_with_other_processes) {
    SweepLedger ledger(3);
    NewProcess job([&](const NewProcess::Tell& /*tell*/) {
        ledger.Begin();
        ledger.Note(0, SweepOutcome::Reported);
        ledger.Begin();
    });
    job.Wait();
    EXPECT_EQ(ledger.OutcomeOf(0), SweepOutcome::Reported);
    EXPECT_EQ(ledger.OutcomeOf(1), SweepOutcome::Hung) << "started by a process that then ended";
    EXPECT_EQ(ledger.Begin(), 2U);
}
