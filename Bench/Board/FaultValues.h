// What may stand behind the "=" of a fault.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Bench {

enum class ValueKind : std::uint8_t { None, Text, Number, Channel, Led, Pin, Link };

bool IsValue(ValueKind kind, const std::string& text);
// How a refusal goes on behind the value: "no multiplexer channel, 0 to 15".
const char* NoSuchValue(ValueKind kind);

bool ParseDouble(const std::string& text, double& number);  // finite
// Of a Pin but for this word, which stands for the remote indicator's six: "3,16".
constexpr std::string_view AllIndicatorLines = "indicator";
bool ParsePin(const std::string& text, int& bank, int& pin);
// Of a Link: "100", or "100,3111"; port 0 for any.
bool ParseLink(const std::string& text, std::uint64_t& bytes, int& port);

}  // namespace Bench
