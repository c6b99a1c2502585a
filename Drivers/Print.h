// How a driver tells a failure to whoever stands at the terminal: the text as it is, at once, without a line end of its
// own. Any thread.
#pragma once

#include <string_view>

void PrintError(std::string_view text);   // standard error stream
void PrintOutput(std::string_view text);  // standard output

// The same as the answer of an operation that failed: false.
bool FailWithError(std::string_view text);
bool FailWithOutput(std::string_view text);
