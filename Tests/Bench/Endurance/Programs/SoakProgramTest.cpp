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

TEST_F(SoakProgram, refuses_what_it_does_not_take_by_name) {
    ExpectRefusal("--cats 1", "unknown argument \"--cats\"; --help lists what there is");
    ExpectRefusal("--flood x", "--flood does not take \"x\", but seconds, from 0 to 1000000");
    ExpectRefusal("--rate 0", "--rate does not take \"0\", but pieces a second, up to 100000");
    ExpectRefusal("--seed -1", "--seed does not take \"-1\", but a whole number from 0 to 4294967295");
    ExpectRefusal("--speed 1001", "--speed does not take \"1001\", but a number from 0.1 to 1000");
    ExpectRefusal("--bench", "--bench does not take \"\", but a folder");
    ExpectRefusal("--program ''", "--program does not take \"\", but a file");
    ExpectRefusal("--flood 1 --program /nowhere/x", "can't run the program /nowhere/x");
    ExpectRefusal("", "nothing to do; --help lists what there is");
}

TEST_F(SoakProgram, fails_where_the_analyzer_ends_by_itself) {
    const ProgramRun run = Run("--flood 60 --program /bin/false");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.text, HasSubstr("flood: 0 s, "));
    EXPECT_THAT(run.text, EndsWith(": FAILED, the analyzer ended with status 1\n"));
}

TEST_F(SoakProgram, floods_both_links_of_the_shipped_analyzer) {
    const ProgramRun run = Run("--flood 2 --speed 100 --seed 5");
    EXPECT_EQ(run.status, 0) << run.text;
    EXPECT_THAT(run.text, EndsWith(": passed\n"));
}
