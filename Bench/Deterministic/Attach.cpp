// Begins the simulation in a program that this library is preloaded to, if its board asks for exact time.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"
#include "Bench/Deterministic/Simulation.h"

namespace Bench {

namespace {

// Where the library with that function or variable is.
Dl_info PlaceOf(const void* address) {
    Dl_info info{};
    dladdr(address, &info);
    return info;
}

constexpr char Variable[] = "LD_PRELOAD";

// Programs that this one starts are no simulation.
void LeaveChildrenOut(const std::string& own) {
    const char* list = std::getenv(Variable);
    if (list == nullptr || std::string(list).rfind(own, 0) != 0) {
        return;
    }
    if (const char* others = list + own.size(); *others == ':') {
        setenv(Variable, std::string(others + 1).c_str(), 1);
    } else {
        unsetenv(Variable);
    }
}

// The runtime of the thread sanitizer starts a thread in two steps, and the program must not see it between them. So
// this library comes before it, and a program that is linked otherwise starts again.
void ComeFirst(char** arguments) {
    static const int here = 0;
    const Dl_info own = PlaceOf(&here);
    const bool sanitized = dlsym(RTLD_DEFAULT, "__tsan_init") != nullptr;
    if (!sanitized || PlaceOf(dlsym(RTLD_DEFAULT, "pthread_create")).dli_fbase == own.dli_fbase) {
        LeaveChildrenOut(own.dli_fname);
        return;
    }
    const char* others = std::getenv(Variable);
    const std::string list = own.dli_fname + (others == nullptr ? "" : ":" + std::string(others));
    if (others == nullptr || std::strstr(others, own.dli_fname) == nullptr) {
        setenv(Variable, list.c_str(), 1);
        execv("/proc/self/exe", arguments);
    }
    std::fprintf(stderr, "exact time: %s is not the first library of the program\n", own.dli_fname);
    std::_Exit(127);
}

[[gnu::constructor]] void BeginPreloaded(int, char** arguments) {
    ComeFirst(arguments);
    if (AttachedState() != nullptr && AttachedState()->exact.wanted) {
        Simulation::Begin(Simulation::Stops::WhenAsked);
    }
}

[[gnu::destructor]] void EndPreloaded() { Simulation::End(); }

}  // namespace

}  // namespace Bench
