// Time-outs that are not a whole number of seconds, on a clock whose fraction of a second is known.
#include <gtest/gtest.h>

#include <cerrno>

#include "Frameworks/Messaging/CommandMessage.h"
#include "Frameworks/Messaging/MessageBuffer.h"
#include "Tests/Support/BoardFixture.h"

namespace {

// The clock is near a whole second at the start, and so slow that it stays in that second for long.
Bench::BoardSetup Slow() {
    Bench::BoardSetup setup;
    setup.speed = 0.1;
    return setup;
}

class EarlyTimeOut : public BoardTest {
protected:
    EarlyTimeOut() : BoardTest(Slow()) {}
};

}  // namespace

TEST_F(EarlyTimeOut, comes_at_once_if_the_nanoseconds_pass_one_second) {
    MessageBuffer buffer("One");
    Board().JumpClock(0.6);
    EXPECT_EQ(buffer.WaitForMessage(1500), nullptr);
    EXPECT_EQ(buffer.GetLastError(), EINVAL);
}

TEST_F(EarlyTimeOut, waits_if_they_do_not) {
    MessageBuffer buffer("One");
    const double start = Board().Seconds();
    Board().SetSpeed(100.0);
    EXPECT_EQ(buffer.WaitForMessage(3000), nullptr);
    EXPECT_EQ(buffer.GetLastError(), ETIMEDOUT);
    EXPECT_GE(Board().Seconds() - start, 3.0);
}
