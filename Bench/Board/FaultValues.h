// The value after the "=" of a fault.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Bench/Board/BoardFaults.h"

namespace Bench {

bool IsValue(ValueKind kind, const std::string& text);
const char* ExpectedValue(ValueKind kind);  // "a multiplexer channel from 0 to 15"

bool ParseDouble(const std::string& text, double& number);  // finite
// A Pin is this word, for the remote indicator's six lines, or a line such as "3,16".
constexpr std::string_view AllIndicatorLines = "indicator";
bool ParseLine(const std::string& text, Line& line);
// A Link is "100", or "100,3111"; port 0 for any.
bool ParseLink(const std::string& text, std::uint64_t& bytes, int& port);

}  // namespace Bench
