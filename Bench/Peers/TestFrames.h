// The frames of the test link, as a test station builds and reads them. All numbers are little-endian. No state, any
// thread.
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
constexpr std::uint32_t HighestTestCount = 0xFFFFFF;
constexpr double HighestTestValue = 65535.9999;

// What the station asks. Without data the length field is how often the command is to be answered; with data it is
// their length.
struct TestRequest {
    std::uint16_t command = 0;
    std::uint32_t count = 0;          // up to HighestTestCount
    double value = 0.0;               // 0 to HighestTestValue, in ten-thousandths
    bool raw = false;                 // the answer is wanted as raw bytes
    std::optional<std::string> data;  // to be stored
    std::uint32_t source = 0;
    std::uint32_t destination = 0;
};

std::string EncodeTestRequest(const TestRequest& request);

// What the analyzer answers: a header, data and their CRC.
struct TestAnswer {
    std::array<std::uint8_t, TestHeaderSize> header{};
    std::uint32_t seconds = 0;  // the analyzer's time of sending
    std::uint32_t nanoSeconds = 0;
    std::string data;
    std::uint32_t crc = 0;  // as it came
    bool crcFits = false;
};

// Takes one answer from the front of what came. Nothing while it isn't whole; a sentence in `trouble` where it can't
// become one.
std::optional<TestAnswer> TakeTestAnswer(std::string& bytes, std::string& trouble);

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

// Each gives nothing where the data have another form.
std::optional<TestText> DecodeTestText(const std::string& data);
std::optional<TestReadings> DecodeTestReadings(const std::string& data);
std::optional<std::vector<TestMeasurement>> DecodeTestMeasurements(const std::string& data);
std::optional<TestText> DecodeTestBytes(const std::string& data);  // all that stands behind the time

// One line for a person: what the answer to that command says. Without control characters.
std::string DescribeTestAnswer(const TestRequest& request, const TestAnswer& answer);

// Control characters, and bytes that are no ASCII, as "\x1B"; a backslash doubled.
std::string Printable(std::string_view text);

}  // namespace Bench
