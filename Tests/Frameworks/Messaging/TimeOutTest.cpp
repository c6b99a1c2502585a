// Time-outs, on a clock whose fraction of a second is known.
#include <gtest/gtest.h>

#include <cerrno>

#include "Tests/Frameworks/Messaging/RecordingController.h"
#include "Tests/Support/ExactTime.h"

namespace {

class TimeOut : public ExactBoardTest {
protected:
    // The clock is at a whole second at the start.
    double SecondsOfWait(std::int32_t timeOut) {
        const double start = Board().Seconds();
        EXPECT_EQ(buffer.WaitForMessage(timeOut), nullptr);
        return Board().Seconds() - start;
    }

    MessageBuffer buffer{"One"};
};

}  // namespace

TEST_F(TimeOut, comes_at_once_if_the_nanoseconds_pass_one_second) {
    Board().JumpClock(0.6);
    EXPECT_THAT(SecondsOfWait(1500), IsWaitOf(0.0));
    EXPECT_EQ(buffer.GetLastError(), EINVAL);
}

TEST_F(TimeOut, is_waited_for_if_they_do_not) {
    EXPECT_THAT(SecondsOfWait(3900), IsWaitOf(3.9));
    EXPECT_EQ(buffer.GetLastError(), ETIMEDOUT);
}

TEST_F(TimeOut, of_a_thread_runs_ProcessTimeOut_at_each_silence_of_that_length) {
    const double start = Board().Seconds();
    RecordingController one("One", NO_DATA_MESSAGE, 1000);
    one.CreateThread();
    EXPECT_EQ(one.WaitForNotes(3), (std::vector<std::string>{"init", "time-out", "time-out"}));
    EXPECT_THAT(Board().Seconds() - start, IsWaitOf(2.0));
}
