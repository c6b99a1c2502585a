// The frames of the test link, as the test station builds and reads them. All numbers are little-endian. Functions
// without state, for any thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

constexpr std::size_t TestHeaderSize = 32;
constexpr std::size_t TestCrcSize = 4;
constexpr std::uint32_t MaxTestCount = 0xFFFFFF;
constexpr double MaxTestValue = 65535.9999;

// A request of the station. Without data the length field is the number of answers; with data it is their length.
struct TestRequest {
    std::uint16_t command = 0;
    std::uint32_t count = 0;          // up to MaxTestCount
    double value = 0.0;               // 0 to MaxTestValue, in ten-thousandths
    bool raw = false;                 // asks for the answer as raw bytes
    std::optional<std::string> data;  // to be stored
    std::uint32_t source = 0;
    std::uint32_t destination = 0;
};

std::string EncodeTestRequest(const TestRequest& request);

// An answer of the analyzer: a header, data and their CRC.
struct TestAnswer {
    std::array<std::uint8_t, TestHeaderSize> header{};
    std::uint32_t seconds = 0;  // the analyzer's time of sending
    std::uint32_t nanoSeconds = 0;
    std::string data;
    std::uint32_t crc = 0;  // as received
    bool crcFits = false;
};

// Removes one answer from the front of the received bytes. Nothing while it is incomplete, or with the reason in
// `error` if it is invalid.
std::optional<TestAnswer> TakeTestAnswer(std::string& bytes, std::string& error);

// CRC-32 as in IEEE 802.3.
std::uint32_t Crc32(std::string_view bytes);

struct TestTime {
    std::uint32_t seconds = 0;
    std::uint32_t nanoSeconds = 0;
    friend bool operator==(const TestTime&, const TestTime&) = default;
};

struct TestText {
    TestTime time;
    std::string text;  // without the zero byte at its end
};

struct TestReading {
    TestTime time;
    std::uint32_t value = 0;
};

struct TestReadings {
    TestTime time;
    std::vector<TestReading> readings;
};

struct TestMeasurement {
    TestTime time;
    double chlorine = 0.0;
};

// Each returns nothing if the data have another form.
std::optional<TestText> DecodeTestText(const std::string& data);
std::optional<TestReadings> DecodeTestReadings(const std::string& data);
std::optional<std::vector<TestMeasurement>> DecodeTestMeasurements(const std::string& data);
std::optional<TestText> DecodeTestBytes(const std::string& data);  // everything after the time

// One line for a person: the content of the answer to that request. Without control characters.
std::string DescribeTestAnswer(const TestRequest& request, const TestAnswer& answer);

// Shows control characters and bytes outside ASCII as "\x1B", and doubles a backslash.
std::string Printable(std::string_view text);

}  // namespace Bench
