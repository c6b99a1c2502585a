// A file in memory, with a path while it exists.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "Fuzzing/Require.h"

class MemoryFile {
public:
    MemoryFile() : m_descriptor(memfd_create("document", 0)), m_path("/proc/self/fd/" + std::to_string(m_descriptor)) {}
    ~MemoryFile() { close(m_descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const char* Path() const { return m_path.c_str(); }
    void Write(const std::uint8_t* data, std::size_t size) const {
        Require(pwrite(m_descriptor, data, size, 0) == static_cast<ssize_t>(size), "the memory file takes its content");
    }
    // Up to `max` bytes from the start.
    std::string Read(std::size_t max) const {
        std::string content(max, '\0');
        const ssize_t size = pread(m_descriptor, content.data(), max, 0);
        Require(size >= 0, "the memory file gives its content");
        content.resize(static_cast<std::size_t>(size));
        return content;
    }

private:
    int m_descriptor;
    std::string m_path;
};
