#include "Tests/Support/FailingAllocation.h"

#include <atomic>
#include <new>

namespace {

thread_local int allocationsLeft = 0;
std::atomic<std::size_t> failingSize{0};

bool Fails(std::size_t size) {
    if (allocationsLeft > 0 && --allocationsLeft == 0) {
        return true;
    }
    std::size_t expected = size;
    return size != 0 && failingSize.compare_exchange_strong(expected, 0);
}

}  // namespace

FailingAllocation::FailingAllocation(int n) { allocationsLeft = n; }

FailingAllocation::~FailingAllocation() { allocationsLeft = 0; }

void FailingAllocation::FailSize(std::size_t size) { failingSize = size; }

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Fails(size) ? nullptr : ::operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Fails(size) ? nullptr : ::operator new[](size);
}
