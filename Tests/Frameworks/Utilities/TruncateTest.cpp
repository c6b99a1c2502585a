#include "Frameworks/Utilities/Truncate.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

TEST(Truncate, cuts_toward_zero) {
    EXPECT_EQ(TruncateTo<std::int32_t>(999.9), 999);
    EXPECT_EQ(TruncateTo<std::int32_t>(-999.9), -999);
    EXPECT_EQ(TruncateTo<std::uint32_t>(0.999), 0U);
}

TEST(Truncate, a_value_out_of_range_becomes_the_nearest_bound) {
    EXPECT_EQ(TruncateTo<std::int32_t>(1e300), 2147483647);
    EXPECT_EQ(TruncateTo<std::int32_t>(-1e300), -2147483647 - 1);
    EXPECT_EQ(TruncateTo<std::uint32_t>(-1.0), 0U);
    EXPECT_EQ(TruncateTo<std::uint32_t>(std::numeric_limits<double>::infinity()), 0xFFFFFFFFU);
    EXPECT_EQ(TruncateTo<std::uint8_t>(300.0), 255);
}

TEST(Truncate, not_a_number_becomes_0) {
    EXPECT_EQ(TruncateTo<std::int32_t>(std::numeric_limits<double>::quiet_NaN()), 0);
}

}  // namespace
