// The simulation hides no race of the program from the thread sanitizer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Support/ProgramRun.h"

namespace {

#ifdef __SANITIZE_THREAD__
constexpr int StatusOfRace = 66;
constexpr const char* TextOfRace = "WARNING: ThreadSanitizer: data race";
#else
constexpr int StatusOfRace = 2;
constexpr const char* TextOfRace = "";
#endif

}  // namespace

TEST(RaceInExactTime, is_found_by_the_thread_sanitizer) {
    const ProgramRun run = RunProgram("racer", "race");
    EXPECT_EQ(run.status, StatusOfRace);
    EXPECT_THAT(run.text, testing::HasSubstr(TextOfRace));
}

TEST(RaceInExactTime, is_none_if_both_threads_lock) {
    const ProgramRun run = RunProgram("racer", "lock");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.text, "");
}
