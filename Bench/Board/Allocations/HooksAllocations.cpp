// Allocations of the program, including operator new, which calls malloc. This is a separate library, preloaded or
// linked before the board if a program wants it. It can't be combined with a sanitizer, which has its own malloc.
//
// The loader allocates before any function can be looked up, so libc's functions are called by their second names.
// Memory is freed by libc's own free.
#include <malloc.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/OwnAllocations.h"

using namespace Bench;

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

// 0, or the error number with which the allocation must fail. No lock, because the thread may hold it.
int Count() {
    BoardState* state = AttachedState();
    return state == nullptr || OwnAllocations::Any() ? 0 : CountCall(*state, "allocation");
}

bool Fails() { return Answer(Count()) != 0; }

}  // namespace

extern "C" {

void* malloc(std::size_t size) noexcept { return Fails() ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t count, std::size_t size) noexcept { return Fails() ? nullptr : __libc_calloc(count, size); }

void* realloc(void* block, std::size_t size) noexcept { return Fails() ? nullptr : __libc_realloc(block, size); }

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return Fails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return Fails() ? nullptr : __libc_memalign(alignment, size);
}

// It returns its error instead of setting errno.
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    if (alignment % sizeof(void*) != 0 || alignment == 0 || (alignment & (alignment - 1)) != 0) {
        return EINVAL;
    }
    if (const int error = Count(); error != 0) {
        return error;
    }
    void* given = __libc_memalign(alignment, size);
    if (given == nullptr) {
        return ENOMEM;
    }
    *block = given;
    return 0;
}
}
