#include "Bench/Peers/TestFrames.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace Bench {

namespace {

constexpr std::uint16_t WriteFlag = 1;
constexpr std::uint16_t RawFlag = 4;
constexpr double ValueScale = 10000.0;

// Offsets of the fields in a header.
constexpr std::size_t SourceAt = 0;
constexpr std::size_t DestinationAt = 4;
constexpr std::size_t FlagsAt = 10;
constexpr std::size_t CommandAt = 12;
constexpr std::size_t LengthAt = 14;
constexpr std::size_t WholeAt = 18;
constexpr std::size_t FractionAt = 20;
constexpr std::size_t SecondsAt = 24;
constexpr std::size_t NanoSecondsAt = 28;

constexpr std::size_t TimeSize = 8;
constexpr std::size_t ReadingSize = 12;
constexpr std::size_t MeasurementSize = 16;

void Put(std::string& bytes, std::size_t at, std::size_t size, std::uint64_t number) {
    for (std::size_t i = 0; i < size; ++i) {
        bytes[at + i] = static_cast<char>(number >> (8 * i) & 0xFF);
    }
}

std::uint64_t Get(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t i = size; i > 0; --i) {
        number = number << 8 | static_cast<std::uint8_t>(bytes[at + i - 1]);
    }
    return number;
}

std::uint32_t Get32(std::string_view bytes, std::size_t at) { return static_cast<std::uint32_t>(Get(bytes, at, 4)); }

TestTime TimeAt(std::string_view bytes, std::size_t at) { return {Get32(bytes, at), Get32(bytes, at + 4)}; }

std::string TimeText(const TestTime& time) {
    const auto seconds = static_cast<std::time_t>(time.seconds);
    std::tm date{};
    gmtime_r(&seconds, &date);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &date);
    char fraction[16];
    std::snprintf(fraction, sizeof fraction, ".%09u", time.nanoSeconds);
    return std::string(text) + fraction;
}

// The shortest text that reads back as that number.
std::string NumberText(double number) {
    char text[64];
    const auto result = std::to_chars(text, text + sizeof text, number);
    return {text, result.ptr};
}

std::string HexDigits(std::uint32_t number, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, number);
    return text;
}

std::string Hex(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        text += (text.empty() ? "" : " ") + HexDigits(static_cast<std::uint8_t>(byte), 2);
    }
    return text;
}

// Each returns an empty text if the data have another form.
std::string DescribeText(const std::string& data) {
    const std::optional<TestText> text = DecodeTestText(data);
    return text ? "text \"" + Printable(text->text) + "\" at " + TimeText(text->time) : "";
}

std::string DescribeReadings(const std::string& data) {
    const std::optional<TestReadings> readings = DecodeTestReadings(data);
    std::string text = readings ? "readings " + std::to_string(readings->readings.size()) : "";
    for (const TestReading& reading : readings ? readings->readings : std::vector<TestReading>()) {
        text += "; 0x" + HexDigits(reading.value, 8) + " at " + TimeText(reading.time);
    }
    return text;
}

std::string DescribeMeasurements(const std::string& data) {
    const std::optional<std::vector<TestMeasurement>> measurements = DecodeTestMeasurements(data);
    std::string text = measurements ? "measurements " + std::to_string(measurements->size()) : "";
    for (const TestMeasurement& measurement : measurements.value_or(std::vector<TestMeasurement>())) {
        text += "; " + NumberText(measurement.chlorine) + " at " + TimeText(measurement.time);
    }
    return text;
}

std::string DescribeBytes(const std::string& data) {
    const std::optional<TestText> bytes = DecodeTestBytes(data);
    return bytes ? "bytes " + Hex(bytes->text) + " at " + TimeText(bytes->time) : "";
}

std::string DescribeAddress(const TestRequest& request, const std::string& data) {
    const std::optional<TestText> text = request.raw ? std::nullopt : DecodeTestText(data);
    return text ? "address " + Printable(text->text) + " at " + TimeText(text->time) : DescribeBytes(data);
}

std::string DescribeData(const TestRequest& request, const std::string& data) {
    const std::uint16_t command = request.command;
    if (data.empty()) {
        return "nothing";
    }
    if ((command >= 10000 && command <= 10255) || (command >= 44100 && command <= 44599)) {
        return DescribeReadings(data);
    }
    if (command >= 62000 && command <= 62999) {
        return DescribeMeasurements(data);
    }
    if (command == 30300) {
        return DescribeAddress(request, data);
    }
    return command >= 12000 && command <= 12255 ? DescribeBytes(data) : DescribeText(data);
}

}  // namespace

std::string EncodeTestRequest(const TestRequest& request) {
    const auto value = static_cast<std::uint64_t>(std::llround(request.value * ValueScale));
    const auto scale = static_cast<std::uint64_t>(ValueScale);
    std::string frame(TestHeaderSize, '\0');
    Put(frame, SourceAt, 4, request.source);
    Put(frame, DestinationAt, 4, request.destination);
    Put(frame, FlagsAt, 2, (request.data ? WriteFlag : 0U) | (request.raw ? RawFlag : 0U));
    Put(frame, CommandAt, 2, request.command);
    Put(frame, LengthAt, 3, request.data ? request.data->size() : request.count);
    Put(frame, WholeAt, 2, value / scale);
    Put(frame, FractionAt, 2, value % scale);
    if (request.data && !request.data->empty()) {
        frame += *request.data;
        frame.append(TestCrcSize, '\0');
        Put(frame, frame.size() - TestCrcSize, TestCrcSize, Crc32(*request.data));
    }
    return frame;
}

std::optional<TestAnswer> TakeTestAnswer(std::string& bytes, std::string& error) {
    if (bytes.size() < TestHeaderSize) {
        return std::nullopt;
    }
    const auto length = static_cast<std::uint32_t>(Get(bytes, LengthAt, 3));
    if (length < TestCrcSize) {
        error = "an answer with a length of " + std::to_string(length) + ", too short for its CRC";
        return std::nullopt;
    }
    if (bytes.size() < TestHeaderSize + length) {
        return std::nullopt;
    }
    TestAnswer answer;
    for (std::size_t i = 0; i < TestHeaderSize; ++i) {
        answer.header[i] = static_cast<std::uint8_t>(bytes[i]);
    }
    answer.seconds = Get32(bytes, SecondsAt);
    answer.nanoSeconds = Get32(bytes, NanoSecondsAt);
    answer.data = bytes.substr(TestHeaderSize, length - TestCrcSize);
    answer.crc = Get32(bytes, TestHeaderSize + length - TestCrcSize);
    answer.crcFits = answer.crc == Crc32(answer.data);
    bytes.erase(0, TestHeaderSize + length);
    return answer;
}

std::uint32_t Crc32(std::string_view bytes) {
    constexpr std::uint32_t ReflectedPolynomial = 0xEDB88320;
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1 ^ ((crc & 1) != 0 ? ReflectedPolynomial : 0);
        }
    }
    return ~crc;
}

std::optional<TestText> DecodeTestBytes(const std::string& data) {
    if (data.size() < TimeSize) {
        return std::nullopt;
    }
    return TestText{TimeAt(data, 0), data.substr(TimeSize)};
}

std::optional<TestText> DecodeTestText(const std::string& data) {
    std::optional<TestText> text = DecodeTestBytes(data);
    if (!text || text->text.empty() || text->text.find('\0') != text->text.size() - 1) {
        return std::nullopt;
    }
    text->text.pop_back();
    return text;
}

std::optional<TestReadings> DecodeTestReadings(const std::string& data) {
    if (data.size() < TimeSize || (data.size() - TimeSize) % ReadingSize != 0) {
        return std::nullopt;
    }
    TestReadings readings{TimeAt(data, 0), {}};
    for (std::size_t at = TimeSize; at < data.size(); at += ReadingSize) {
        readings.readings.push_back({TimeAt(data, at), Get32(data, at + TimeSize)});
    }
    return readings;
}

std::optional<std::vector<TestMeasurement>> DecodeTestMeasurements(const std::string& data) {
    if (data.empty() || data.size() % MeasurementSize != 0) {
        return std::nullopt;
    }
    std::vector<TestMeasurement> measurements;
    for (std::size_t at = 0; at < data.size(); at += MeasurementSize) {
        measurements.push_back({TimeAt(data, at), std::bit_cast<double>(Get(data, at + TimeSize, 8))});
    }
    return measurements;
}

std::string DescribeTestAnswer(const TestRequest& request, const TestAnswer& answer) {
    if (!answer.crcFits) {
        return "wrong CRC 0x" + HexDigits(answer.crc, 8) + " after " + std::to_string(answer.data.size()) + " bytes";
    }
    const std::string text = DescribeData(request, answer.data);
    return text.empty() ? "unreadable " + Hex(answer.data) : text;
}

std::string Printable(std::string_view text) {
    std::string printable;
    for (const char character : text) {
        if (character < 0x20 || character > 0x7E) {
            printable += "\\x" + HexDigits(static_cast<std::uint8_t>(character), 2);
        } else {
            printable += character == '\\' ? "\\\\" : std::string(1, character);
        }
    }
    return printable;
}

}  // namespace Bench
