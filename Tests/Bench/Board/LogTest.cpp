#include <syslog.h>
#include <unistd.h>

#include <cerrno>

#include "Tests/Support/BoardFixture.h"

namespace {

class LogTest : public BoardTest {
protected:
    ~LogTest() override {
        setlogmask(0xff);
        closelog();
    }
};

// A format that the compiler does not see, as the system's own lines are.
void Log(int priority, const char* format) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    syslog(priority, format);
#pragma GCC diagnostic pop
}

TEST_F(LogTest, a_line_is_kept_with_all_that_was_given) {
    openlog("Vernicor", LOG_PID | LOG_CONS | LOG_NDELAY, LOG_LOCAL1);
    syslog(LOG_NOTICE, "%d of %s", 3, "four");
    const std::vector<Bench::LogLine> lines = Board().Log();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].ident, "Vernicor");
    EXPECT_EQ(lines[0].options, 11);
    EXPECT_EQ(lines[0].facility, LOG_LOCAL1);
    EXPECT_EQ(lines[0].priority, LOG_NOTICE);
    EXPECT_EQ(lines[0].format, "%d of %s");
    EXPECT_EQ(lines[0].text, "3 of four");
}

TEST_F(LogTest, priority_8_is_kept_as_given) {
    Log(8, "rumor");
    ASSERT_EQ(Board().Log().size(), 1U);
    EXPECT_EQ(Board().Log()[0].priority, 8);
}

TEST_F(LogTest, a_percent_sign_in_the_format_is_a_conversion) {
    errno = ENOENT;
    Log(LOG_ERR, "100%% and %m");
    ASSERT_EQ(Board().Log().size(), 1U);
    EXPECT_EQ(Board().Log()[0].format, "100%% and %m");
    EXPECT_EQ(Board().Log()[0].text, "100% and No such file or directory");
}

TEST_F(LogTest, tabs_line_ends_and_backslashes_survive) {
    Log(LOG_ERR, "a\tb\nc\\d");
    Log(LOG_ERR, "");
    ASSERT_EQ(Board().Log().size(), 2U);
    EXPECT_EQ(Board().Log()[0].text, "a\tb\nc\\d");
    EXPECT_EQ(Board().Log()[1].text, "");
}

TEST_F(LogTest, a_line_goes_to_the_error_stream_where_asked_for) {
    openlog("Vernicor", LOG_PERROR | LOG_PID, LOG_USER);
    testing::internal::CaptureStderr();
    Log(LOG_ERR, "text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Vernicor[" + std::to_string(getpid()) + "]: text\n");
}

TEST_F(LogTest, a_line_does_not_go_to_the_error_stream_unasked) {
    openlog("Vernicor", LOG_PID, LOG_USER);
    testing::internal::CaptureStderr();
    Log(LOG_ERR, "text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(LogTest, the_mask_drops_the_priorities_that_it_leaves_out) {
    EXPECT_EQ(setlogmask(LOG_MASK(LOG_ERR)), 0xff);
    Log(LOG_DEBUG, "dropped");
    Log(LOG_ERR, "kept");
    ASSERT_EQ(Board().Log().size(), 1U);
    EXPECT_EQ(Board().Log()[0].text, "kept");
    EXPECT_EQ(setlogmask(0), LOG_MASK(LOG_ERR));
}

TEST_F(LogTest, closelog_forgets_the_ident) {
    openlog("Vernicor", 0, LOG_USER);
    closelog();
    Log(LOG_ERR, "text");
    EXPECT_EQ(Board().Log()[0].ident, "test_board");
}

TEST_F(LogTest, a_cleared_log_is_empty) {
    Log(LOG_ERR, "text");
    Board().ClearLog();
    EXPECT_TRUE(Board().Log().empty());
}

}  // namespace
