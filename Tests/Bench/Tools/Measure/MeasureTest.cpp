// The parts of ./measure that need no analyzer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Bench/Tools/Measure/CycleWaits.h"
#include "Bench/Tools/Measure/Figures.h"
#include "Bench/Tools/Measure/LampToDisk.h"
#include "Bench/Tools/Measure/ProcessView.h"
#include "Bench/Tools/Measure/RoundTrip.h"
#include "Tests/Support/ProgramRun.h"
#include "Tests/Support/ReadFile.h"

namespace {

using Bench::Figures;

}  // namespace

TEST(Figures, are_met_up_to_and_with_their_limit) {
    Figures figures;
    figures.Add("size", 1.5, 1.5, "MB", "of one file");
    EXPECT_TRUE(figures.AllMet());
    EXPECT_EQ(figures.Table(), "size: 1.5 MB, at most 1.5: met\n    of one file\n");
    EXPECT_EQ(figures.LastLine(), "footprint: size 1.5 MB; all met");
    figures.Add("time", 2.25, 2.0, "s", "once");
    EXPECT_FALSE(figures.AllMet());
    EXPECT_EQ(figures.Table(),
              "size: 1.5 MB, at most 1.5: met\n    of one file\ntime: 2.25 s, at most 2: MISSED\n    once\n");
    EXPECT_EQ(figures.LastLine(), "footprint: size 1.5 MB; time 2.25 s; 1 of 2 missed");
}

TEST(MeasureProgram, refuses_wrong_arguments) {
    const struct {
        const char* arguments;
        const char* error;
    } rows[] = {
        {"--cycles 0", "--cycles: invalid value \"0\" (expected a whole number from 1 to 10000)"},
        {"--resets=10001", "--resets: invalid value \"10001\" (expected a whole number from 1 to 10000)"},
        {"--records 5x", "--records: invalid value \"5x\" (expected a whole number from 1 to 10000)"},
        {"--starts", "--starts: no value (expected a whole number from 1 to 10000)"},
        {"--bench ''", "--bench: invalid value \"\" (expected a folder)"},
        {"--cycle 1", "unknown argument \"--cycle\" (see --help)"},
        {"--arm /nowhere/x", "can't find the stripped program /nowhere/x"},
    };
    for (const auto& row : rows) {
        const ProgramRun run = RunProgram("bench-measure", row.arguments);
        EXPECT_EQ(run.status, 2) << row.arguments;
        EXPECT_EQ(run.text, std::string("measure: ") + row.error + "\n");
    }
}

TEST(ProcessView, sees_what_this_process_takes) {
    const Bench::ResidentMemory memory = Bench::ResidentMemoryOf(getpid());
    EXPECT_GT(memory.privatePages, 0);
    EXPECT_GT(memory.sharedPages, 0);
    EXPECT_EQ(memory.All(), memory.privatePages + memory.sharedPages);
    const Bench::Activity activity = Bench::ActivityOf(getpid());
    EXPECT_GE(activity.threads, 1);
    EXPECT_GT(activity.processorTime, 0);
    EXPECT_FALSE(Bench::IsAsleep(getpid()));  // it is asking just now
}

TEST(ProcessView, sees_each_switch) {
    const Bench::Activity before = Bench::ActivityOf(getpid());
    Bench::RoundTrip roundTrip;
    EXPECT_GT(roundTrip.Once(), 0.0);
    usleep(1);
    EXPECT_GT(Bench::ActivityOf(getpid()).switches, before.switches);
}

TEST(ShortSteps, cut_every_step_but_the_last) {
    const Bench::SettingsFile sample(ReadFile(SOURCE_FOLDER "/configuration/analyzer.conf.xml"));
    std::string error;
    const std::optional<Bench::CycleSettings> settings = Bench::ReadCycleSettings(WithShortSteps(sample), error);
    ASSERT_TRUE(settings) << error;
    ASSERT_EQ(settings->steps.size(), 19U);
    EXPECT_EQ(settings->steps.back().duration, 1000.0);
    for (std::size_t step = 0; step < 18; ++step) {
        EXPECT_EQ(settings->steps[step].duration, 250.0);
        EXPECT_EQ(settings->steps[step].motorSpeed, 0.0);
    }
}
