#include "Bench/Board/Real.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

namespace Bench {

void* FindNext(const char* name) {
    void* address = dlsym(RTLD_NEXT, name);
    if (address == nullptr) {
        // Streams of libc may not work this early.
        static constexpr char text[] = "board: this libc has no ";
        const ssize_t first = Real::write(2, text, sizeof(text) - 1);
        const ssize_t second = Real::write(2, name, std::strlen(name));
        std::_Exit(first + second > 0 ? 127 : 126);
    }
    return address;
}

namespace Real {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name that is defined takes none
#define BENCH_DEFINE(name) constinit decltype(RealOf(&::name)) name{#name};
BENCH_REAL_FUNCTIONS(BENCH_DEFINE)
#undef BENCH_DEFINE

void FindAll() {
#define BENCH_FIND(name) name.Find();
    BENCH_REAL_FUNCTIONS(BENCH_FIND)
#undef BENCH_FIND
}
}  // namespace Real

}  // namespace Bench
