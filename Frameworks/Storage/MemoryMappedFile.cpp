#include "Frameworks/Storage/MemoryMappedFile.h"

bool MemoryMappedFile::Flush() const {
    static_cast<void>(IsMapped());
    return false;
}

bool MemoryMappedFile::Unmap() const {
    static_cast<void>(IsMapped());
    return false;
}

bool MemoryMappedFile::Read(void* buffer, std::size_t count) { return RefuseTransfer(buffer, count); }

bool MemoryMappedFile::Write(const void* buffer, std::size_t count) { return RefuseTransfer(buffer, count); }

bool MemoryMappedFile::RefuseTransfer(const void* buffer, std::size_t count) const {
    if (buffer != nullptr && count != 0) {
        static_cast<void>(IsMapped());
    }
    return false;
}
