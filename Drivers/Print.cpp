#include "Drivers/Print.h"

#include <cstdio>

void PrintError(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

// Flushed, since most texts have no line end, and a child process would write what is still in the buffer once more.
void PrintOutput(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

bool FailWithError(std::string_view text) {
    PrintError(text);
    return false;
}

bool FailWithOutput(std::string_view text) {
    PrintOutput(text);
    return false;
}
