#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"
#include "Tests/Support/ProgramRun.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

ProgramRun Sweep(const std::string& arguments) { return RunProgram("bench-sweep", arguments); }

void ExpectRefusal(const std::string& arguments, const std::string& text) {
    const ProgramRun run = Sweep(arguments);
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_EQ(run.text, "sweep: " + text + "\n");
}

}  // namespace

TEST(SweepProgram, refuses_wrong_arguments) {
    EXPECT_THAT(Sweep("--kind sneeze").text,
                StartsWith("sweep: --kind: invalid value \"sneeze\" (expected one of open, "));
    ExpectRefusal("--jobs 0", "--jobs: invalid value \"0\" (expected a whole number from 1 to 64)");
    ExpectRefusal("--number 0", "--number: invalid value \"0\" (expected a whole number from 1 to 1000000)");
    ExpectRefusal("--most x", "--most: invalid value \"x\" (expected a whole number from 0 to 1000000)");
    ExpectRefusal("--minutes 0", "--minutes: invalid value \"0\" (expected a number from 0.001 to 100000)");
    ExpectRefusal("--cats 1", "unknown argument \"--cats\" (see --help)");
}

TEST(SweepProgram, fails_if_the_run_without_a_failure_fails) {
    const TemporaryFolder folder;
    const ProgramRun run = Sweep("--kind mount --program /bin/false --bench " + folder / "bench");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.text, "sweep: FAILED, the run without a failure fails: the analyzer ended with status 1\n");
}
