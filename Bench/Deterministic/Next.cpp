#include "Bench/Deterministic/Next.h"

#include <dlfcn.h>

#include <cstdlib>

namespace Bench {

void* FindAfter(const char* name) {
    void* address = dlsym(RTLD_NEXT, name);
    if (address == nullptr) {
        std::_Exit(127);
    }
    return address;
}

namespace Next {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name that is defined takes none
#define BENCH_DEFINE(name) constinit decltype(RealOf(&::name)) name{#name, FindAfter};
BENCH_NEXT_FUNCTIONS(BENCH_DEFINE)
#undef BENCH_DEFINE

void FindAll() {
#define BENCH_FIND(name) name.Find();
    BENCH_NEXT_FUNCTIONS(BENCH_FIND)
#undef BENCH_FIND
}
}  // namespace Next

}  // namespace Bench
