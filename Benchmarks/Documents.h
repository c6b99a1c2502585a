// Documents of the form of the analyzer's settings file, as files in memory.
#pragma once

#include <string>

enum DocumentSize {
    SMALL,  // the settings file as it is delivered, 40 KB
    LARGE,  // the same sections again and again, 20 MB
};

// Created at the first call; removed when the program ends.
const std::string& DocumentPath(DocumentSize size);

// Tasks in one timed batch, so that it lasts a millisecond or more.
inline int BatchOf(DocumentSize size) { return size == SMALL ? 20 : 1; }

// Ends the program: without the task the comparison is meaningless.
[[noreturn]] void EndForFailure(const std::string& what);
