// The documents that are read, as files in memory.
#pragma once

#include <string>

#include "Benchmarks/XmlBenchmarks.h"

// Made at the first call; removed when the program ends.
const std::string& DocumentPath(DocumentSize size);

// Loads in one timed batch, so that it lasts a millisecond or more.
inline int BatchOf(DocumentSize size) { return size == SMALL ? 20 : 1; }

// Ends the program: a comparison of what did not happen would say nothing.
[[noreturn]] void EndForFailure(const std::string& what);
