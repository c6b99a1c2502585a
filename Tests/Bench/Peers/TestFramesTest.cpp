// The frames of the test link byte for byte.
#include "Bench/Peers/TestFrames.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

std::string Bytes(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); ++i) {
        if (hex[i] != ' ') {
            bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
            ++i;
        }
    }
    return bytes;
}

// A header with that length, sent at second 0x01020304 and nanosecond 5.
std::string HeaderOf(std::size_t length) {
    std::string header(TestHeaderSize, '\0');
    header[14] = static_cast<char>(length & 0xFF);
    header[15] = static_cast<char>(length >> 8 & 0xFF);
    header[16] = static_cast<char>(length >> 16 & 0xFF);
    header.replace(24, 8, Bytes("04 03 02 01 05 00 00 00"));
    return header;
}

std::string AnswerOf(const std::string& data) {
    const std::uint32_t crc = Crc32(data);
    std::string bytes = HeaderOf(data.size() + 4) + data;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(crc >> shift & 0xFF);
    }
    return bytes;
}

TestAnswer Take(std::string bytes) {
    std::string trouble;
    const std::optional<TestAnswer> answer = TakeTestAnswer(bytes, trouble);
    EXPECT_TRUE(answer.has_value());
    EXPECT_EQ(trouble, "");
    EXPECT_EQ(bytes, "");
    return answer.value_or(TestAnswer{});
}

std::string Describe(std::uint16_t command, const std::string& data, bool raw = false) {
    TestRequest request;
    request.command = command;
    request.raw = raw;
    return DescribeTestAnswer(request, Take(AnswerOf(data)));
}

const std::string Stamp = Bytes("00 00 00 51 09 00 00 00");  // 2013-01-23 15:21:36 UTC and 9 ns

}  // namespace

TEST(TestFrames, crc_of_the_nine_digits) {
    EXPECT_EQ(Crc32("123456789"), 0xCBF43926U);
    EXPECT_EQ(Crc32(""), 0U);
}

TEST(TestFrames, request_is_a_header_of_32_bytes) {
    TestRequest request;
    request.command = 840;
    request.source = 0x01020304;
    request.destination = 0x0A0B0C0D;
    request.value = 2.5;
    EXPECT_EQ(EncodeTestRequest(request),
              Bytes("04 03 02 01 0D 0C 0B 0A 00 00 00 00 48 03 00 00 00 00 02 00 88 13 00 00 00 00 00 00 00 00 00 00"));
}

TEST(TestFrames, count_has_three_bytes_low_byte_first) {
    TestRequest request;
    request.command = 62100;
    request.count = 0x010203;
    request.value = 60.0;
    request.raw = true;
    EXPECT_EQ(EncodeTestRequest(request),
              Bytes("00 00 00 00 00 00 00 00 00 00 04 00 94 F2 03 02 01 00 3C 00 00 00 00 00 00 00 00 00 00 00 00 00"));
}

TEST(TestFrames, value_is_rounded_to_ten_thousandths) {
    TestRequest request;
    request.value = 0.29;
    EXPECT_EQ(EncodeTestRequest(request).substr(18, 4), Bytes("00 00 54 0B"));
    request.value = 0.99999;
    EXPECT_EQ(EncodeTestRequest(request).substr(18, 4), Bytes("01 00 00 00"));
    request.value = MaxTestValue;
    EXPECT_EQ(EncodeTestRequest(request).substr(18, 4), Bytes("FF FF 0F 27"));
}

TEST(TestFrames, data_follow_with_their_length_the_write_flag_and_their_crc) {
    TestRequest request;
    request.command = 30200;
    request.count = 7;
    request.data = "123456789";
    EXPECT_EQ(EncodeTestRequest(request),
              Bytes("00 00 00 00 00 00 00 00 00 00 01 00 F8 75 09 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                    "31 32 33 34 35 36 37 38 39 26 39 F4 CB"));
}

TEST(TestFrames, answer_gives_time_data_and_whether_the_crc_fits) {
    const TestAnswer answer = Take(AnswerOf("123456789"));
    EXPECT_EQ(answer.seconds, 0x01020304U);
    EXPECT_EQ(answer.nanoSeconds, 5U);
    EXPECT_EQ(answer.data, "123456789");
    EXPECT_EQ(answer.crc, 0xCBF43926U);
    EXPECT_TRUE(answer.crcFits);
    EXPECT_EQ(answer.header[14], 13);
}

TEST(TestFrames, answer_with_a_wrong_crc_is_reported) {
    std::string bytes = AnswerOf("data");
    bytes[33] ^= 1;
    const TestAnswer answer = Take(bytes);
    EXPECT_FALSE(answer.crcFits);
    EXPECT_EQ(DescribeTestAnswer({}, answer), "wrong CRC 0xADF3F363 after 4 bytes");
}

TEST(TestFrames, answer_is_taken_once_it_is_whole) {
    const std::string whole = AnswerOf("data");
    std::string trouble;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        std::string part = whole.substr(0, size);
        EXPECT_FALSE(TakeTestAnswer(part, trouble).has_value()) << size;
        EXPECT_EQ(part.size(), size);
    }
    std::string more = whole + "next";
    EXPECT_TRUE(TakeTestAnswer(more, trouble).has_value());
    EXPECT_EQ(more, "next");
    EXPECT_EQ(trouble, "");
}

TEST(TestFrames, length_without_room_for_a_crc_is_an_error) {
    for (std::size_t length = 0; length < TestCrcSize; ++length) {
        std::string bytes = HeaderOf(length) + "....";
        std::string trouble;
        EXPECT_FALSE(TakeTestAnswer(bytes, trouble).has_value());
        EXPECT_EQ(trouble, "an answer with a length of " + std::to_string(length) + ", too short for its CRC");
    }
}

TEST(TestFrames, text_is_a_time_and_a_text_with_a_zero_byte) {
    const auto text = DecodeTestText(Stamp + std::string("TEST_STATE\0", 11));
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(text->time, (TestTime{0x51000000, 9}));
    EXPECT_EQ(text->text, "TEST_STATE");
    EXPECT_FALSE(DecodeTestText("").has_value());
    EXPECT_FALSE(DecodeTestText(Stamp).has_value());
    EXPECT_FALSE(DecodeTestText(Stamp + "no zero byte").has_value());
    EXPECT_FALSE(DecodeTestText(Stamp + std::string("a\0b\0", 4)).has_value());
}

TEST(TestFrames, readings_have_twelve_bytes_each_after_a_time) {
    const auto readings = DecodeTestReadings(Stamp + Bytes("01 00 00 00 02 00 00 00 78 56 34 12") +
                                             Bytes("03 00 00 00 04 00 00 00 66 55 44 33"));
    ASSERT_TRUE(readings.has_value());
    EXPECT_EQ(readings->time.seconds, 0x51000000U);
    ASSERT_EQ(readings->readings.size(), 2U);
    EXPECT_EQ(readings->readings[0].time, (TestTime{1, 2}));
    EXPECT_EQ(readings->readings[0].value, 0x12345678U);
    EXPECT_EQ(readings->readings[1].value, 0x33445566U);
    EXPECT_TRUE(DecodeTestReadings(Stamp)->readings.empty());
    EXPECT_FALSE(DecodeTestReadings(Stamp + "12345678901").has_value());
    EXPECT_FALSE(DecodeTestReadings("1234567").has_value());
}

TEST(TestFrames, measurements_have_a_time_and_a_double_each) {
    const auto measurements = DecodeTestMeasurements(Bytes("01 00 00 00 02 00 00 00 00 00 00 00 00 00 E0 3F") +
                                                     Bytes("03 00 00 00 04 00 00 00 00 00 00 00 00 00 F0 BF"));
    ASSERT_TRUE(measurements.has_value());
    ASSERT_EQ(measurements->size(), 2U);
    EXPECT_EQ((*measurements)[0].time, (TestTime{1, 2}));
    EXPECT_EQ((*measurements)[0].chlorine, 0.5);
    EXPECT_EQ((*measurements)[1].chlorine, -1.0);
    EXPECT_FALSE(DecodeTestMeasurements("").has_value());
    EXPECT_FALSE(DecodeTestMeasurements(Stamp + "1234567").has_value());
}

TEST(TestFrames, each_answer_is_described_in_one_line) {
    EXPECT_EQ(Describe(840, Stamp + std::string("TEST_STATE\0", 11)),
              "text \"TEST_STATE\" at 2013-01-23 15:21:36.000000009");
    EXPECT_EQ(Describe(44100, Stamp + Bytes("00 00 00 00 01 00 00 00 78 56 34 12")),
              "readings 1; 0x12345678 at 1970-01-01 00:00:00.000000001");
    EXPECT_EQ(Describe(62100, Bytes("01 00 00 00 00 00 00 00 33 33 33 33 33 33 E3 3F")),
              "measurements 1; 0.6 at 1970-01-01 00:00:01.000000000");
    EXPECT_EQ(Describe(30300, Stamp + std::string("00:04:25:1C:A0:02\0", 18)),
              "address 00:04:25:1C:A0:02 at 2013-01-23 15:21:36.000000009");
    EXPECT_EQ(Describe(30300, Stamp + Bytes("00 04 25 1C A0 02"), true),
              "bytes 00 04 25 1C A0 02 at 2013-01-23 15:21:36.000000009");
    EXPECT_EQ(Describe(12005, Stamp + "1"), "bytes 31 at 2013-01-23 15:21:36.000000009");
    EXPECT_EQ(Describe(800, ""), "nothing");
    EXPECT_EQ(Describe(840, "short"), "unreadable 73 68 6F 72 74");
}

TEST(TestFrames, output_has_no_control_characters) {
    EXPECT_EQ(Describe(840, Stamp + std::string("\x1B[2Jok\\\xFF\0", 9)),
              "text \"\\x1B[2Jok\\\\\\xFF\" at 2013-01-23 15:21:36.000000009");
}

}  // namespace Bench
