#include "Frameworks/Utilities/CRC32.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::vector<std::uint8_t> BytesOf(const std::string& text) { return {text.begin(), text.end()}; }

}  // namespace

TEST(CRC32, gives_the_check_value_of_its_kind) { EXPECT_EQ(CRC32().Compute(BytesOf("123456789")), 0xCBF43926U); }

TEST(CRC32, of_nothing_is_zero) { EXPECT_EQ(CRC32().Compute({}), 0U); }

TEST(CRC32, of_known_texts_is_the_published_one) {
    EXPECT_EQ(CRC32().Compute({0x00}), 0xD202EF8DU);
    EXPECT_EQ(CRC32().Compute({0xFF}), 0xFF000000U);
    EXPECT_EQ(CRC32().Compute({0xFF, 0xFF, 0xFF, 0xFF}), 0xFFFFFFFFU);
}

TEST(CRC32, checks_data_against_an_expected_one) {
    EXPECT_TRUE(CRC32().Check(BytesOf("123456789"), 0xCBF43926));
    EXPECT_FALSE(CRC32().Check(BytesOf("123456780"), 0xCBF43926));
    EXPECT_FALSE(CRC32().Check(BytesOf("123456789"), 0xCBF43927));
}
