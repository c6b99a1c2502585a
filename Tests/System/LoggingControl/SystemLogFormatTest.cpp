#include "System/LoggingControl/SystemLogFormat.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

// What syslog makes of a line, without an argument.
std::string Printed(const char* line) {
    const StdString format = SystemLogFormat(line);
    char text[256] = "";
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text, sizeof text, format.CString());
#pragma GCC diagnostic pop
    return text;
}

}  // namespace

TEST(SystemLogFormat, leaves_a_line_without_a_percent_sign_as_it_is) {
    EXPECT_EQ(SystemLogFormat("UTC 2012-12-31 11:59:59.5 :: text"), "UTC 2012-12-31 11:59:59.5 :: text");
}

TEST(SystemLogFormat, leaves_the_conversions_that_take_no_argument) {
    EXPECT_EQ(SystemLogFormat("100%% done: %m"), "100%% done: %m");
}

TEST(SystemLogFormat, makes_one_percent_sign_of_two) { EXPECT_EQ(Printed("100%% done"), "100% done"); }

TEST(SystemLogFormat, lets_m_stand_for_the_last_error) {
    errno = ENOSPC;
    EXPECT_EQ(Printed("%m"), std::strerror(ENOSPC));
}

TEST(SystemLogFormat, prints_conversions_that_need_an_argument_literally) {
    for (const char* line : {"%d", "%s", "50% done", "%n", "%hhn", "%1$n", "%*d", "%999999999d", "%5%", "%.m", "%lm"}) {
        EXPECT_EQ(Printed(line), line);
    }
}

TEST(SystemLogFormat, prints_a_percent_sign_at_the_end) { EXPECT_EQ(Printed("100%"), "100%"); }

TEST(SystemLogFormat, reads_signs_in_pairs_from_the_left) {
    EXPECT_EQ(Printed("%%n"), "%n");
    EXPECT_EQ(Printed("%%%n"), "%%n");
    EXPECT_EQ(Printed("%%%%"), "%%");
}
