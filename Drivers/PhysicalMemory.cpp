#include "Drivers/PhysicalMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstddef>

#include "Drivers/Print.h"

namespace {

constexpr std::uint32_t PageSize = 4096;
constexpr std::uint32_t OffsetMask = PageSize - 1;

// One page, mapped from construction to destruction.
class MappedPage {
public:
    // The registers are in the upper half of the address space, so that with a 32-bit off_t the offset is negative; the
    // kernel takes it as the unsigned number it is.
    MappedPage(int descriptor, std::uint32_t address)
        : m_page(mmap(nullptr, PageSize, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor,
                      static_cast<off_t>(address & ~OffsetMask))),
          m_offset(address & OffsetMask) {}
    MappedPage(const MappedPage&) = delete;
    MappedPage& operator=(const MappedPage&) = delete;
    ~MappedPage() {
        if (m_page != MAP_FAILED) {
            munmap(m_page, PageSize);
        }
    }

    // Null, with the text, if the page could not be mapped.
    volatile std::uint32_t* Word() const {
        if (m_page == MAP_FAILED) {
            PrintError("mmap failed");
            return nullptr;
        }
        return static_cast<volatile std::uint32_t*>(m_page) + m_offset / sizeof(std::uint32_t);
    }

private:
    void* m_page;
    std::uint32_t m_offset;
};

}  // namespace

bool PhysicalMemory::Open() {
    Close();
    m_descriptor = open("/dev/mem", O_RDWR | O_SYNC);
    if (m_descriptor < 0) {
        m_descriptor = -1;
        PrintError("open mem dev failed");
        return false;
    }
    return true;
}

void PhysicalMemory::Close() {
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
    m_descriptor = -1;
}

bool PhysicalMemory::ReadWord(std::uint32_t address, std::uint32_t& value) const {
    const MappedPage page(m_descriptor, address);
    const volatile std::uint32_t* word = page.Word();
    if (word == nullptr) {
        return false;
    }
    value = *word;
    return true;
}

bool PhysicalMemory::WriteWord(std::uint32_t address, std::uint32_t value) const {
    const MappedPage page(m_descriptor, address);
    volatile std::uint32_t* word = page.Word();
    if (word == nullptr) {
        return false;
    }
    *word = value;
    return true;
}
