// Threads that meet in the initialization of a local static. The C++ library waits by a futex that the simulation sees,
// the thread sanitizer by one that it does not.
#include <cxxabi.h>

#include <cstdint>

#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"

namespace abi = __cxxabiv1;

namespace Bench {

namespace {

constinit decltype(RealOf(&abi::__cxa_guard_acquire)) nextAcquire{"__cxa_guard_acquire", FindAfter};
constinit decltype(RealOf(&abi::__cxa_guard_release)) nextRelease{"__cxa_guard_release", FindAfter};
constinit decltype(RealOf(&abi::__cxa_guard_abort)) nextAbort{"__cxa_guard_abort", FindAfter};

// In both libraries the lowest bit of the first word is set at the end, and others until then.
bool InProgress(const abi::__guard* guard) {
    const std::uint32_t word = __atomic_load_n(reinterpret_cast<const std::uint32_t*>(guard), __ATOMIC_SEQ_CST);
    return (word & 1U) == 0 && word != 0;
}

void WakeAfter(const abi::__guard* guard) {
    if (Simulation::Runs()) {
        Simulation::Wake(Wait::Futex, guard);
    }
}

}  // namespace

}  // namespace Bench

using namespace Bench;

extern "C" {

int abi::__cxa_guard_acquire(__guard* guard) {
    while (Simulation::Runs() && InProgress(guard)) {
        Simulation::Block(Wait::Futex, guard);
    }
    return nextAcquire(guard);
}

void abi::__cxa_guard_release(__guard* guard) noexcept {
    nextRelease(guard);
    WakeAfter(guard);
}

void abi::__cxa_guard_abort(__guard* guard) noexcept {
    nextAbort(guard);
    WakeAfter(guard);
}
}
