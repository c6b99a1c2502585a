// mmap and munmap of /dev/mem.
#include <sys/mman.h>

#include <atomic>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr int MaxMappings = 64;

struct Mapping {
    std::atomic<void*> address{nullptr};
    std::atomic<std::uint32_t> page{0};
};

Mapping mappings[MaxMappings];
std::atomic<int> openMappings{0};

Mapping* FindMapping(void* address) {
    for (Mapping& mapping : mappings) {
        if (mapping.address.load() == address) {
            return &mapping;
        }
    }
    return nullptr;
}

void* Refuse(int error) { return Answer<void*>(error, nullptr, MAP_FAILED); }

void* MapRegisters(BoardState& state, std::size_t size, int protection, std::uint32_t page) {
    if (CountOrFail(state, "mmap") != 0) {
        return MAP_FAILED;
    }
    if (size == 0 || size > RegisterPageSize || page % RegisterPageSize != 0) {
        return Refuse(EINVAL);
    }
    void* address = Real::mmap(static_cast<void*>(nullptr), RegisterPageSize, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS, -1, off_t{0});
    if (address == MAP_FAILED) {
        return address;
    }
    {
        const BoardLock lock(state);
        if (WriteRefused(state, {Family::Memory}) && (protection & PROT_WRITE) != 0) {
            Real::munmap(address, RegisterPageSize);
            return Refuse(EIO);
        }
        FillRegisterPage(state, page, static_cast<std::uint32_t*>(address));
    }
    for (Mapping& mapping : mappings) {
        void* none = nullptr;
        if (mapping.address.compare_exchange_strong(none, address)) {
            mapping.page.store(page);
            openMappings.fetch_add(1);
            return address;
        }
    }
    Real::munmap(address, RegisterPageSize);
    return Refuse(ENOMEM);
}

template <typename RealMap, typename Offset>
void* Map(RealMap& real, void* address, std::size_t size, int protection, int flags, int file, Offset offset) {
    const BoardFile found = FindFile(file);
    // On 32 bits the registers' addresses arrive as negative offsets.
    return found.node.family == Family::Memory
               ? MapRegisters(*found.state, size, protection, static_cast<std::uint32_t>(offset))
               : real(address, size, protection, flags, file, offset);
}

}  // namespace

extern "C" {

void* mmap(void* address, size_t size, int protection, int flags, int file, off_t offset) noexcept {
    return Map(Real::mmap, address, size, protection, flags, file, offset);
}

void* mmap64(void* address, size_t size, int protection, int flags, int file, off64_t offset) noexcept {
    return Map(Real::mmap64, address, size, protection, flags, file, offset);
}

int munmap(void* address, size_t size) noexcept {
    Mapping* mapping = openMappings.load() > 0 ? FindMapping(address) : nullptr;
    if (mapping == nullptr) {
        return Real::munmap(address, size);
    }
    const std::uint32_t page = mapping->page.load();
    BoardState* state = AttachedState();
    if (state != nullptr) {
        ApplyRegisterPage(*BoardLock(*state), page, static_cast<const std::uint32_t*>(address));
    }
    openMappings.fetch_sub(1);
    mapping->address.store(nullptr);
    return Real::munmap(address, RegisterPageSize);
}
}
