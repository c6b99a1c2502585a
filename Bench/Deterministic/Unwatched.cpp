#include "Bench/Deterministic/Unwatched.h"

#include <dlfcn.h>

#include <initializer_list>

namespace Bench {

namespace {

using Annotation = void (*)(const char* file, int line);

struct Pair {
    Annotation begin = nullptr;
    Annotation end = nullptr;
};

Pair reads;
Pair writes;

Annotation Find(const char* name) { return reinterpret_cast<Annotation>(dlsym(RTLD_DEFAULT, name)); }

}  // namespace

void Unwatched::FindAll() {
    reads = {Find("AnnotateIgnoreReadsBegin"), Find("AnnotateIgnoreReadsEnd")};
    writes = {Find("AnnotateIgnoreWritesBegin"), Find("AnnotateIgnoreWritesEnd")};
}

void Unwatched::Set(bool begins) {
    for (const Pair& pair : {reads, writes}) {
        if (const Annotation call = begins ? pair.begin : pair.end; call != nullptr) {
            call(__FILE__, __LINE__);
        }
    }
}

}  // namespace Bench

// Reports have addresses instead of lines: to find a line, the sanitizer would read the program's file by calls that
// the simulation sees, and let another thread run while it holds its own locks.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() { return "symbolize=0"; }
