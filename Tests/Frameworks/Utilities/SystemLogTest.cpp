// The system log without the router.
#include <gtest/gtest.h>
#include <syslog.h>

#include "Frameworks/Utilities/UtilityFunctions.h"
#include "Tests/Support/BoardFixture.h"

namespace {

class SystemLog : public BoardTest {};

}  // namespace

TEST_F(SystemLog, LogToSystem_writes_one_notice_under_the_identity) {
    UtilityFunctions::LogToSystem("Identity", "a text");
    const std::vector<Bench::LogLine> log = Board().Log();
    ASSERT_EQ(log.size(), 1U);
    EXPECT_EQ(log[0].ident, "Identity");
    EXPECT_EQ(log[0].options, LOG_PID | LOG_CONS | LOG_NDELAY);
    EXPECT_EQ(log[0].facility, LOG_LOCAL1);
    EXPECT_EQ(log[0].priority, LOG_NOTICE);
    EXPECT_EQ(log[0].text, "a text");
}

TEST_F(SystemLog, the_text_is_the_format) {
    UtilityFunctions::LogToSystem("Identity", "100%%");
    ASSERT_EQ(Board().Log().size(), 1U);
    EXPECT_EQ(Board().Log()[0].format, "100%%");
    EXPECT_EQ(Board().Log()[0].text, "100%");
}

TEST_F(SystemLog, CheckPointer_logs_line_and_file_of_a_null_pointer) {
    EXPECT_TRUE(UtilityFunctions::CheckPointer(this, 12, "File.cpp"));
    EXPECT_TRUE(Board().Log().empty());
    EXPECT_FALSE(UtilityFunctions::CheckPointer(nullptr, 12, "File.cpp"));
    ASSERT_EQ(Board().Log().size(), 1U);
    EXPECT_EQ(Board().Log()[0].ident, "File.cpp");
    EXPECT_EQ(Board().Log()[0].text, "12 had a null pointer sent to it  in file File.cpp");
}
