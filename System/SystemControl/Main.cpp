#include <cstdio>
#include <string_view>

#include "Frameworks/Utilities/Version.h"
#include "System/SystemControl/RunSystem.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// One heap for all threads, which gives back what a start has let go of: a dozen threads that mostly wait need no heap
// each. The C library of the instrument has the words for it; another takes more memory.
void KeepMemorySmall() {
#ifdef __GLIBC__
    constexpr int Heaps = 1;
    constexpr int FreeBytesAtTheEnd = 16384;
    constexpr int BytesOfTheirOwn = 32768;  // so large a block, as a file that is read, is no part of the heap
    mallopt(M_ARENA_MAX, Heaps);
    mallopt(M_TRIM_THRESHOLD, FreeBytesAtTheEnd);
    mallopt(M_TOP_PAD, 0);
    mallopt(M_MMAP_THRESHOLD, BytesOfTheirOwn);
#endif
}

}  // namespace

// No argument, or the word "&" that some start scripts leave behind, runs the system; anything else but --version does
// nothing.
int main(int argumentCount, char** arguments) {
    KeepMemorySmall();
    if (argumentCount == 1) {
        return RunSystem();
    }
    if (argumentCount != 2) {
        return 0;
    }
    const std::string_view argument = arguments[1];
    if (argument == "--version") {
        std::printf("%s\n", GetVersionText().CString());
    }
    return argument == "&" ? RunSystem() : 0;
}
