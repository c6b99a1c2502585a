// What ./measure is made of, where it needs no analyzer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Bench/Measure/CycleWaits.h"
#include "Bench/Measure/Figures.h"
#include "Bench/Measure/LampToDisk.h"
#include "Bench/Measure/MeasureOptions.h"
#include "Bench/Measure/ProcessView.h"
#include "Bench/Measure/RoundTrip.h"
#include "Tests/Support/ReadFile.h"

namespace {

using Bench::Figures;
using Bench::MeasureOptions;
using Bench::Median;

std::string ErrorOf(const std::vector<std::string>& arguments) {
    MeasureOptions options;
    std::string error;
    EXPECT_FALSE(Bench::ReadMeasureOptions(arguments, options, error));
    return error;
}

}  // namespace

TEST(Median, is_the_middle_one) {
    EXPECT_EQ(Median({3.0, 1.0, 2.0}), 2.0);
    EXPECT_EQ(Median({4.0, 1.0, 3.0, 2.0}), 2.5);
    EXPECT_EQ(Median({}), 0.0);
}

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

TEST(MeasureOptions, take_counts_and_paths) {
    MeasureOptions options;
    std::string error;
    EXPECT_TRUE(Bench::ReadMeasureOptions(
        {"--cycles", "1", "--resets", "2", "--records", "10000", "--starts", "9", "--arm", "/a", "--bench", "/b"},
        options, error));
    EXPECT_EQ(options.cycles, 1);
    EXPECT_EQ(options.resets, 2);
    EXPECT_EQ(options.records, 10000);
    EXPECT_EQ(options.starts, 9);
    EXPECT_EQ(options.arm, "/a");
    EXPECT_EQ(options.bench, "/b");
    EXPECT_TRUE(Bench::ReadMeasureOptions({"--help"}, options, error));
    EXPECT_TRUE(options.help);
}

TEST(MeasureOptions, name_what_is_wrong) {
    EXPECT_EQ(ErrorOf({"--cycles", "0"}), "--cycles takes a number from 1 to 10000, not \"0\"");
    EXPECT_EQ(ErrorOf({"--resets", "10001"}), "--resets takes a number from 1 to 10000, not \"10001\"");
    EXPECT_EQ(ErrorOf({"--records", "5x"}), "--records takes a number from 1 to 10000, not \"5x\"");
    EXPECT_EQ(ErrorOf({"--cycles"}), "--cycles takes a number from 1 to 10000, not \"\"");
    EXPECT_EQ(ErrorOf({"--bench"}), "--bench takes a path");
    EXPECT_EQ(ErrorOf({"--cycle", "1"}), "unknown argument \"--cycle\"; --help lists them");
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
    const std::string text = Bench::WithShortSteps(ReadFile(SOURCE_FOLDER "/configuration/analyzer.conf.xml"));
    std::string error;
    const std::optional<Bench::CycleSettings> settings = Bench::ReadCycleSettings(text, error);
    ASSERT_TRUE(settings) << error;
    ASSERT_EQ(settings->steps.size(), 19U);
    EXPECT_EQ(settings->steps.back().duration, 1000.0);
    for (std::size_t step = 0; step < 18; ++step) {
        EXPECT_EQ(settings->steps[step].duration, 250.0);
        EXPECT_EQ(settings->steps[step].motorSpeed, 0.0);
    }
}
