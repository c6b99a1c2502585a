// The frame of a file that is mapped into memory: it holds the file's name and maps nothing yet. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Frameworks/Utilities/StdString.h"

class MemoryMappedFile {
public:
    MemoryMappedFile() = default;
    explicit MemoryMappedFile(const StdString& name) : m_name(name) {}  // opens nothing
    MemoryMappedFile(const MemoryMappedFile&) = default;
    MemoryMappedFile& operator=(const MemoryMappedFile&) = default;
    virtual ~MemoryMappedFile() = default;

    const StdString& GetName() const { return m_name; }
    const StdString& GetMode() const { return m_mode; }

    virtual bool IsMapped() const { return m_mapping != 0; }

    // Each asks for a mapping, does nothing and returns false.
    bool Flush() const;
    bool Unmap() const;
    bool Read(void* buffer, std::size_t count);
    bool Write(const void* buffer, std::size_t count);

private:
    bool RefuseTransfer(const void* buffer, std::size_t count) const;

    [[maybe_unused]] std::uint32_t m_first = 0;
    std::uint32_t m_mapping = 0;  // 0: none
    [[maybe_unused]] std::uint32_t m_third = 0;
    StdString m_name;
    StdString m_mode;
};
