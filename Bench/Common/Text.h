// Small helpers for text, numbers and files. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Bench {

// The text that printf would print.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

// The fields between the commas; an empty line has one empty field.
std::vector<std::string> SplitAtCommas(const std::string& line);

// Nothing if the file can't be read.
std::optional<std::string> ReadWholeFile(const std::string& path);

// The middle value, of an even number the mean of the two in the middle; 0 for none.
double Median(std::vector<double> values);

// Waits in real time.
void SleepMilliseconds(int milliseconds);

}  // namespace Bench
