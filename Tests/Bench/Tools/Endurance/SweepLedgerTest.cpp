#include "Bench/Tools/Endurance/SweepLedger.h"

#include <gtest/gtest.h>

#include "Tests/Support/NewProcess.h"

using Bench::SweepLedger;
using Bench::SweepOutcome;

TEST(SweepLedger, gives_each_trial_to_one_alone) {
    SweepLedger ledger(2);
    ASSERT_TRUE(ledger.IsMade());
    EXPECT_EQ(ledger.Begin(), 0U);
    EXPECT_EQ(ledger.Begin(), 1U);
    EXPECT_EQ(ledger.Begin(), std::nullopt);
    EXPECT_EQ(ledger.Begin(), std::nullopt);
}

TEST(SweepLedger, knows_those_that_were_never_begun) {
    SweepLedger ledger(2);
    ledger.Begin();
    ledger.Note(0, SweepOutcome::NotReached);
    EXPECT_EQ(ledger.OutcomeOf(0), SweepOutcome::NotReached);
    EXPECT_EQ(ledger.OutcomeOf(1), std::nullopt);
}

TEST(SweepLedger, sees_what_another_process_has_done) {
    SweepLedger ledger(3);
    NewProcess job([&](const NewProcess::Tell& /*tell*/) {
        ledger.Begin();
        ledger.Note(0, SweepOutcome::Reported);
        ledger.Begin();
    });
    job.Wait();
    EXPECT_EQ(ledger.OutcomeOf(0), SweepOutcome::Reported);
    EXPECT_EQ(ledger.OutcomeOf(1), SweepOutcome::Hung) << "begun by a process that has ended in it";
    EXPECT_EQ(ledger.Begin(), 2U);
}
