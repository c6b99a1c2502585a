// Prints a driver's failure on the console: the text as it is, at once, without an added line end. Any thread.
#pragma once

#include <string_view>

void PrintError(std::string_view text);   // standard error stream
void PrintOutput(std::string_view text);  // standard output

// The same, and returns false, so that a failed operation can return the call.
bool FailWithError(std::string_view text);
bool FailWithOutput(std::string_view text);
