#include "Bench/Board/FaultValues.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <system_error>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr int HighestPort = 65535;

// One number or two with a comma in between, digits alone, at most nine of each. How many; 0 where it is none of this.
int ParseNumbers(const std::string& text, int (&numbers)[2]) {
    constexpr std::ptrdiff_t MostDigits = 9;
    const char* next = text.data();
    const char* end = next + text.size();
    for (int count = 1; count <= 2; ++count) {
        const auto result = std::from_chars(next, end, numbers[count - 1]);
        if (result.ec != std::errc() || *next == '-' || result.ptr - next > MostDigits) {
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

bool IsChannel(const std::string& text) {
    double number = 0.0;
    return ParseDouble(text, number) && number >= 0.0 && number < MultiplexerChannels && number == std::floor(number);
}

}  // namespace

bool ParseDouble(const std::string& text, double& number) {
    char* end = nullptr;
    number = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && std::isfinite(number);
}

bool ParsePin(const std::string& text, int& bank, int& pin) {
    int numbers[2] = {};
    if (ParseNumbers(text, numbers) != 2 || numbers[0] >= Banks || numbers[1] >= PinsPerBank) {
        return false;
    }
    bank = numbers[0];
    pin = numbers[1];
    return true;
}

bool ParseLink(const std::string& text, std::uint64_t& bytes, int& port) {
    int numbers[2] = {};
    const int count = ParseNumbers(text, numbers);
    bytes = static_cast<std::uint64_t>(numbers[0]);
    port = count == 2 ? numbers[1] : 0;
    return count == 1 || (count == 2 && port > 0 && port <= HighestPort);
}

bool IsValue(ValueKind kind, const std::string& text) {
    double number = 0.0;
    int first = 0;
    int second = 0;
    std::uint64_t bytes = 0;
    switch (kind) {
        case ValueKind::Number:
            return ParseDouble(text, number) && number >= 0.0 && number <= 1e9;
        case ValueKind::Channel:
            return IsChannel(text);
        case ValueKind::Led:
            return IsIndicatorLed(text);
        case ValueKind::Pin:
            return text == AllIndicatorLines || ParsePin(text, first, second);
        case ValueKind::Link:
            return ParseLink(text, bytes, first);
        case ValueKind::None:
        case ValueKind::Text:
            break;
    }
    return kind == ValueKind::Text;
}

const char* NoSuchValue(ValueKind kind) {
    switch (kind) {
        case ValueKind::Number:
            return "no number from 0 to 1000000000";
        case ValueKind::Channel:
            return "no multiplexer channel, 0 to 15";
        case ValueKind::Led:
            return "no LED of the indicator, such as amber-water";
        case ValueKind::Pin:
            return "no line, such as 3,16, and not indicator";
        case ValueKind::Link:
            return "no number of bytes, with or without a port as in 100,3111";
        case ValueKind::None:
        case ValueKind::Text:
            break;
    }
    return "no value";
}

}  // namespace Bench
