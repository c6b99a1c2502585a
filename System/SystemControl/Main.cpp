#include <cstdio>
#include <string_view>

#include "Frameworks/Utilities/Version.h"
#include "System/SystemControl/RunSystem.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// One heap for all threads, which returns to the system what the start has freed: a dozen threads that mostly wait do
// not need a heap each. glibc has mallopt for this; other C libraries simply use more memory.
void KeepMemorySmall() {
#ifdef __GLIBC__
    constexpr int MaxHeaps = 1;
    constexpr int MaxFreeBytesAtTop = 16384;
    constexpr int MinMappedBytes = 32768;  // a block this large, such as a file that is read, is not on the heap
    mallopt(M_ARENA_MAX, MaxHeaps);
    mallopt(M_TRIM_THRESHOLD, MaxFreeBytesAtTop);
    mallopt(M_TOP_PAD, 0);
    mallopt(M_MMAP_THRESHOLD, MinMappedBytes);
#endif
}

}  // namespace

// No argument, or the word "&" that some start scripts pass on, runs the system. "--version" prints the version. Any
// other argument does nothing.
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
