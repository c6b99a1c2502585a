#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "Tests/Support/BenchRun.h"
#include "Tests/Support/ProgramRun.h"
#include "Tests/Support/ReadFile.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

class ExploreProgram : public testing::Test {
protected:
    ProgramRun Run(const std::string& arguments) const {
        return ::RunProgram("bench-explore", arguments + " --bench " + m_folder / "bench");
    }

    void ExpectRefusal(const std::string& arguments, const std::string& text) const {
        const ProgramRun run = Run(arguments);
        EXPECT_EQ(run.status, 2) << arguments;
        EXPECT_EQ(run.text, "explore: " + text + "\n");
    }

    std::string Course(const std::string& text) const {
        std::ofstream(m_folder / "course") << text;
        return "--course " + m_folder / "course";
    }

    TemporaryFolder m_folder;
};

}  // namespace

TEST_F(ExploreProgram, refuses_wrong_arguments) {
    ExpectRefusal("--seeds 0", "--seeds: invalid value \"0\" (expected a whole number from 1 to 100000000)");
    ExpectRefusal("--seed x", "--seed: invalid value \"x\" (expected a whole number from 0 to 4000000000)");
    ExpectRefusal("--policy best",
                  "--policy: unknown policy \"best\" (random, sticky, priority, until-blocked or stalls)");
    ExpectRefusal("--trace file", "--trace: only with --seed or --course");
    ExpectRefusal(Course("7 jump\n"), m_folder / "course" + ": line 1: unknown event \"jump\"");
    ExpectRefusal("--course c --seed 1", "--course: not together with --seed or --policy, which the file gives");
    ExpectRefusal("--course /nowhere/course", "/nowhere/course: can't read it");
    ExpectRefusal("--seed 1 --trace /nowhere/trace", "--trace: can't write /nowhere/trace");
}

TEST_F(ExploreProgram, passes_with_the_shipped_analyzer) {
    const ProgramRun run = Run("--seeds 2 --first-seed 41 --minutes 3 --jobs 2");
    EXPECT_EQ(run.status, 0) << run.text;
    EXPECT_THAT(run.text, StartsWith("2 of 2 seeds, 0.0"));
    EXPECT_THAT(run.text, HasSubstr(" 0 findings: passed\n"));
}

TEST_F(ExploreProgram, replays_a_seed) {
    const ProgramRun run = Run("--seed 43 --minutes 3");
    EXPECT_EQ(run.status, 0) << run.text;
    EXPECT_EQ(Run("--seed 43 --minutes 3").text, run.text);
    EXPECT_NE(Run("--seed 43 --minutes 3 --policy until-blocked").text, run.text);
}

TEST_F(ExploreProgram, writes_the_events_of_a_run) {
    ASSERT_EQ(Run("--seed 43 --minutes 0.5 --trace " + m_folder / "trace").status, 0);
    const std::string trace = ReadFile(m_folder / "trace");
    EXPECT_THAT(trace, StartsWith("1 1000.0000"));
    EXPECT_THAT(trace, HasSubstr(" thread 0 create "));
}

TEST_F(ExploreProgram, says_so_if_the_disk_is_full) {
    const ProgramRun run = Run("--seed 43 --minutes 0.5 --trace /dev/full");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.text, HasSubstr("the trace file could not take all events"));
}

TEST_F(ExploreProgram, finds_an_analyzer_that_ends_and_says_how_to_replay_it) {
    const ProgramRun run = Run("--seeds 1 --first-seed 6 --minutes 3 --program /bin/false");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.text, StartsWith("seed 6: the analyzer ended with status 1; 0 events; "));
    EXPECT_THAT(run.text, HasSubstr("replay: ./explore --course " + m_folder / "bench" + "/seed-6.course\n"));
    EXPECT_THAT(run.text, HasSubstr("1 findings: FAILED\n"));
    EXPECT_THAT(ReadFile(m_folder / "bench/seed-6.course"), StartsWith("seed 6\npolicy "));
}

TEST_F(ExploreProgram, finds_water_that_is_measured_wrong) {
    // The analyzer gets another cell constant than the instrument has.
    const ProgramRun run = Run(Course("seed 2\nminutes 1\nset ColorimeterCellConstant 2.5\n"));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.text, HasSubstr("chlorine 0."));
    EXPECT_THAT(run.text, HasSubstr(" after all faults, in the water 0.6"));
}
