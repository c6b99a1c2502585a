#include "Benchmarks/HeapPeak.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

// While nothing is measured, a call costs one check of the flag.
std::atomic<bool> isCounting{false};
std::atomic<std::ptrdiff_t> held{0};
std::atomic<std::ptrdiff_t> highest{0};

void Count(std::ptrdiff_t change) {
    const std::ptrdiff_t now = held.fetch_add(change, std::memory_order_relaxed) + change;
    std::ptrdiff_t before = highest.load(std::memory_order_relaxed);
    while (now > before && !highest.compare_exchange_weak(before, now, std::memory_order_relaxed)) {
    }
}

std::ptrdiff_t SizeOf(void* block) { return static_cast<std::ptrdiff_t>(malloc_usable_size(block)); }

void* Counted(void* block) {
    if (isCounting.load(std::memory_order_relaxed) && block != nullptr) {
        Count(SizeOf(block));
    }
    return block;
}

}  // namespace

HeapPeak::HeapPeak() {
    held = 0;
    highest = 0;
    isCounting = true;
}

HeapPeak::~HeapPeak() { isCounting = false; }

std::size_t HeapPeak::Bytes() const { return static_cast<std::size_t>(highest.load()); }

extern "C" {

void* malloc(std::size_t size) { return Counted(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) { return Counted(__libc_calloc(count, size)); }

void* memalign(std::size_t alignment, std::size_t size) { return Counted(__libc_memalign(alignment, size)); }

void* aligned_alloc(std::size_t alignment, std::size_t size) { return Counted(__libc_memalign(alignment, size)); }

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = Counted(__libc_memalign(alignment, size));
    return *block == nullptr ? ENOMEM : 0;
}

// A block that moves counts only once: a large one moves by its pages, without a copy.
void* realloc(void* block, std::size_t size) {
    if (!isCounting.load(std::memory_order_relaxed)) {
        return __libc_realloc(block, size);
    }
    const std::ptrdiff_t before = SizeOf(block);
    void* moved = __libc_realloc(block, size);
    if (moved != nullptr || size == 0) {
        Count(SizeOf(moved) - before);
    }
    return moved;
}

void free(void* block) {
    if (isCounting.load(std::memory_order_relaxed) && block != nullptr) {
        Count(-SizeOf(block));
    }
    __libc_free(block);
}
}
