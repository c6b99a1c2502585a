#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"
#include "Tests/Support/ProgramRun.h"

using testing::EndsWith;
using testing::HasSubstr;

namespace {

class SoakProgram : public testing::Test {
protected:
    ProgramRun Run(const std::string& arguments) const {
        return ::RunProgram("bench-soak", arguments + " --bench " + m_folder / "bench");
    }

    void ExpectRefusal(const std::string& arguments, const std::string& text) const {
        const ProgramRun run = ::RunProgram("bench-soak", arguments);
        EXPECT_EQ(run.status, 2) << arguments;
        EXPECT_EQ(run.text, "soak: " + text + "\n");
    }

    TemporaryFolder m_folder;
};

}  // namespace

TEST_F(SoakProgram, refuses_wrong_arguments) {
    ExpectRefusal("--cats 1", "unknown argument \"--cats\" (see --help)");
    ExpectRefusal("--flood x", "--flood: invalid value \"x\" (expected a number from 0 to 1000000)");
    ExpectRefusal("--rate 0", "--rate: invalid value \"0\" (expected a number from 0.001 to 100000)");
    ExpectRefusal("--cycles -1", "--cycles: invalid value \"-1\" (expected a whole number from 0 to 1000000)");
    ExpectRefusal("--resets=x", "--resets: invalid value \"x\" (expected a whole number from 0 to 1000000)");
    ExpectRefusal("--days 1001", "--days: invalid value \"1001\" (expected a number from 0 to 1000)");
    ExpectRefusal("--seed -1", "--seed: invalid value \"-1\" (expected a whole number from 0 to 4294967295)");
    ExpectRefusal("--speed 1001", "--speed: invalid value \"1001\" (expected a number from 0.1 to 1000)");
    ExpectRefusal("--bench", "--bench: no value (expected a folder)");
    ExpectRefusal("--program /nowhere/x", "--program: invalid value \"/nowhere/x\" (expected an executable file)");
    ExpectRefusal("", "nothing to do: give --cycles, --resets, --days or --flood");
}

TEST_F(SoakProgram, fails_if_the_analyzer_ends_by_itself) {
    const ProgramRun run = Run("--flood 60 --program /bin/false");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.text, HasSubstr("flood: 0 s, "));
    EXPECT_THAT(run.text, EndsWith(": FAILED, the analyzer ended with status 1\n"));
}

TEST_F(SoakProgram, is_the_same_run_with_the_same_seed) {
    const ProgramRun first = Run("--cycles 4 --resets 1 --seed 11");
    EXPECT_EQ(first.status, 0) << first.text;
    EXPECT_THAT(first.text, HasSubstr(" days, 4 results reported"));
    EXPECT_EQ(Run("--cycles 4 --resets 1 --seed 11").text, first.text);
    EXPECT_NE(Run("--cycles 4 --resets 1 --seed 12").text, first.text);
}

TEST_F(SoakProgram, floods_both_links_of_the_shipped_analyzer) {
    const ProgramRun run = Run("--flood 2 --speed 100 --seed 5");
    EXPECT_EQ(run.status, 0) << run.text;
    EXPECT_THAT(run.text, EndsWith(": passed\n"));
}
