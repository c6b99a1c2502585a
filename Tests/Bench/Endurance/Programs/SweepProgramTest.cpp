#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"
#include "Tests/Support/ProgramRun.h"

using testing::EndsWith;
using testing::HasSubstr;

namespace {

ProgramRun Sweep(const std::string& arguments) { return RunProgram("bench-sweep", arguments); }

}  // namespace

TEST(SweepProgram, refuses_what_it_does_not_take) {
    EXPECT_EQ(Sweep("--kind sneeze").status, 2);
    EXPECT_EQ(Sweep("--kind sneeze").text, "sweep: --kind \"sneeze\" is not understood; --help lists what there is\n");
    EXPECT_EQ(Sweep("--jobs 0").text, "sweep: --jobs \"0\" is not understood; --help lists what there is\n");
    EXPECT_EQ(Sweep("--number 0").text, "sweep: --number \"0\" is not understood; --help lists what there is\n");
    EXPECT_EQ(Sweep("--minutes 0").text, "sweep: --minutes \"0\" is not understood; --help lists what there is\n");
    EXPECT_EQ(Sweep("--cats 1").text, "sweep: --cats \"1\" is not understood; --help lists what there is\n");
}

TEST(SweepProgram, fails_where_the_analyzer_does_not_even_run_without_a_failure) {
    const TemporaryFolder folder;
    const ProgramRun run = Sweep("--kind mount --program /bin/false --bench " + folder / "bench");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.text, "sweep: FAILED, the run without a failure goes wrong: the analyzer ended with status 1\n");
}
