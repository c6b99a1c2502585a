#include "Drivers/Print.h"

#include <iostream>

void PrintError(std::string_view text) { std::cerr << text; }

// Flushed, since most texts have no line end, and a child process would write what is still in the buffer once more.
void PrintOutput(std::string_view text) { std::cout << text << std::flush; }

bool FailWithError(std::string_view text) {
    PrintError(text);
    return false;
}

bool FailWithOutput(std::string_view text) {
    PrintOutput(text);
    return false;
}
