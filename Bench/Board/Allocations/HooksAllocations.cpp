// Memory of the program, operator new of the C++ library included, which calls malloc. A library of its own, preloaded
// or linked in front of the board by those alone who want it, and never beside a sanitizer, which has its own malloc.
//
// The loader allocates before anything could be looked up, so libc's functions are called by their second names, and
// what they gave goes back by libc's own free.
#include <malloc.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/OwnAllocations.h"

using namespace Bench;

// The names are those of libc.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

// 0, or the error number of the one that must fail. No lock: the thread may hold it.
int Count() {
    BoardState* state = AttachedState();
    return state == nullptr || OwnAllocations::Any() ? 0 : CountCall(*state, Call::Allocation);
}

bool Fails() {
    const int error = Count();
    if (error != 0) {
        errno = error;
    }
    return error != 0;
}

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

// It gives its error instead of setting it.
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
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
