#include "Bench/Tools/Endurance/Course.h"

#include <gtest/gtest.h>

using namespace Bench;

namespace {

std::string ErrorOf(const std::string& text) {
    std::string error;
    EXPECT_FALSE(ReadCourse(text, error)) << text;
    return error;
}

}  // namespace

TEST(Course, is_drawn_from_the_seed_alone) {
    EXPECT_EQ(WriteCourse(DrawCourse(5, "", 20.0)), WriteCourse(DrawCourse(5, "", 20.0)));
    EXPECT_NE(WriteCourse(DrawCourse(5, "", 20.0)), WriteCourse(DrawCourse(6, "", 20.0)));
}

TEST(Course, reads_what_it_has_written) {
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        const std::string text = WriteCourse(DrawCourse(seed, "", 60.0));
        std::string error;
        const std::optional<Course> course = ReadCourse(text, error);
        ASSERT_TRUE(course) << error;
        EXPECT_EQ(WriteCourse(*course), text);
    }
}

TEST(Course, takes_the_policy_that_is_asked_for) { EXPECT_EQ(DrawCourse(5, "sticky:0.5", 1.0).policy, "sticky:0.5"); }

TEST(Course, has_no_event_after_its_end) {
    const Course course = DrawCourse(9, "", 30.0);
    ASSERT_FALSE(course.events.empty());
    EXPECT_LT(course.events.back().second, 1800.0);
}

TEST(Course, names_the_line_that_it_cannot_read) {
    EXPECT_EQ(ErrorOf("seed 3\nbutton 4\n"), "line 2: unknown event \"button\"");
    EXPECT_EQ(ErrorOf("# text\n\n1.5 dance\n"), "line 3: unknown event \"dance\"");
    EXPECT_EQ(ErrorOf("1.5 button x\n"), "line 1: can't read \"1.5 button x\"");
    EXPECT_EQ(ErrorOf("9 button 1\n8 button 1\n"), "line 2: the second is before that of the event above");
    EXPECT_EQ(ErrorOf("1 station 800 count 16777216 value 0\n"),
              "line 1: can't read \"1 station 800 count 16777216 value 0\"");
    EXPECT_EQ(ErrorOf("1 station 30200 count 1 value 0 data 4g\n"),
              "line 1: can't read \"1 station 30200 count 1 value 0 data 4g\"");
    EXPECT_NE(ErrorOf("1 fault led-of\n").find("led-of"), std::string::npos);
    EXPECT_NE(ErrorOf("policy best\n").find("best"), std::string::npos);
}
