#include "Bench/Board/FaultValues.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <system_error>

#include "Bench/Board/BoardLinks.h"

namespace Bench {

namespace {

// Parses one number or two separated by a comma, of at most nine digits each. Returns how many; 0 for any other text.
int ParseNumbers(const std::string& text, int (&numbers)[2]) {
    constexpr std::ptrdiff_t MaxDigits = 9;
    const char* next = text.data();
    const char* end = next + text.size();
    for (int count = 1; count <= 2; ++count) {
        const auto result = std::from_chars(next, end, numbers[count - 1]);
        if (result.ec != std::errc() || *next == '-' || result.ptr - next > MaxDigits) {
            return 0;
        }
        if (result.ptr == end) {
            return count;
        }
        if (*result.ptr != ',') {
            return 0;
        }
        next = result.ptr + 1;
    }
    return 0;
}

}  // namespace

bool ParseDouble(const std::string& text, double& number) {
    char* end = nullptr;
    number = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && std::isfinite(number);
}

bool ParseLine(const std::string& text, Line& line) {
    int numbers[2] = {};
    const bool fits = ParseNumbers(text, numbers) == 2 && numbers[0] < Banks && numbers[1] < PinsPerBank;
    line = {numbers[0], numbers[1]};
    return fits;
}

bool ParseLink(const std::string& text, std::uint64_t& bytes, int& port) {
    int numbers[2] = {};
    const int count = ParseNumbers(text, numbers);
    bytes = static_cast<std::uint64_t>(numbers[0]);
    port = count == 2 ? numbers[1] : 0;
    return count == 1 || (count == 2 && port > 0 && port <= MaxPort);
}

bool IsValue(ValueKind kind, const std::string& text) {
    double number = 0.0;
    Line line{};
    int port = 0;
    std::uint64_t bytes = 0;
    switch (kind) {
        case ValueKind::Number:
            return ParseDouble(text, number) && number >= 0.0 && number <= 1e9;
        case ValueKind::Channel:
            return ParseDouble(text, number) && number >= 0.0 && number < MultiplexerChannels &&
                   number == std::floor(number);
        case ValueKind::Led:
            return IsIndicatorLed(text);
        case ValueKind::Pin:
            return text == AllIndicatorLines || ParseLine(text, line);
        case ValueKind::Link:
            return ParseLink(text, bytes, port);
        case ValueKind::None:
        case ValueKind::Text:
            break;
    }
    return kind == ValueKind::Text;
}

const char* ExpectedValue(ValueKind kind) {
    switch (kind) {
        case ValueKind::Number:
            return "a number from 0 to 1000000000";
        case ValueKind::Channel:
            return "a multiplexer channel from 0 to 15";
        case ValueKind::Led:
            return "an LED of the indicator, such as amber-water";
        case ValueKind::Pin:
            return "a line, such as 3,16, or indicator";
        case ValueKind::Link:
            return "a number of bytes, with or without a port as in 100,3111";
        case ValueKind::None:
        case ValueKind::Text:
            break;
    }
    return "no value";
}

}  // namespace Bench
