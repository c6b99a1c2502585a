#include "Bench/Console/Display.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(Display, bar_shows_the_share) {
    EXPECT_EQ(ProgressBar(0.0, 10), "----------   0 %");
    EXPECT_EQ(ProgressBar(0.5, 10), "#####-----  50 %");
    EXPECT_EQ(ProgressBar(1.0, 10), "########## 100 %");
}

TEST(Display, bar_keeps_within_its_ends) {
    EXPECT_EQ(ProgressBar(-3.0, 4), "----   0 %");
    EXPECT_EQ(ProgressBar(7.0, 4), "#### 100 %");
}

TEST(Display, text_is_cut_between_characters) {
    EXPECT_EQ(CutToWidth("Grüße", 3), "Grü");
    EXPECT_EQ(CutToWidth("abc", 3), "abc");
    EXPECT_EQ(CutToWidth("abc", 0), "");
}

}  // namespace
}  // namespace Bench
