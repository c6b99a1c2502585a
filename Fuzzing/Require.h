// Ends a fuzz run with a line on the error stream if a condition is false.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void Require(bool isTrue, const char* what) {
    if (!isTrue) {
        std::fprintf(stderr, "violated: %s\n", what);
        std::abort();
    }
}
