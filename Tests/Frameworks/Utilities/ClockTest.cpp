// A clock that fails.
#include <cerrno>

#include "Frameworks/Utilities/TimeInfo.h"
#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/ReportedLines.h"

namespace {

using Clock = BoardTest;

TEST_F(Clock, that_fails_is_reported_and_leaves_the_time_unchanged) {
    TimeInfo time;
    const std::int32_t seconds = time.GetSeconds();
    Board().JumpClock(100.0);
    const ReportedLines reported;
    ASSERT_TRUE(Board().FailCall("clock_gettime", 1, EINVAL));
    time.ResetTime();
    EXPECT_EQ(reported.Texts(),
              std::vector<std::string>{"TimeInfo::ResetTime  Unable to get time from RealTime clock"});
    EXPECT_EQ(time.GetSeconds(), seconds);
    time.ResetTime();
    EXPECT_GE(time.GetSeconds(), seconds + 100);
}

}  // namespace
