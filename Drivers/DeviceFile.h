// The kernel's small text files, the one place where the drivers turn a kernel error into a boolean. Any thread.
#pragma once

#include <string>

// Closes what it holds.
class FileDescriptor {
public:
    // open's flags.
    FileDescriptor(const std::string& path, int flags);
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor();

    bool IsOpen() const { return m_descriptor >= 0; }
    int Get() const { return m_descriptor; }

private:
    int m_descriptor;
};

namespace DeviceFile {

// The outcome of a write.
enum class WriteResult {
    Written,
    Refused,  // the file exists, but the kernel did not take the value
    NotOpened,
};

// Whether the directory exists: that of a line or a channel exists only while it is claimed.
bool DirectoryOpens(const std::string& path);

// In one call; the file is never made.
WriteResult WriteText(const std::string& path, const std::string& text);

// False if the file does not open. Empty if it cannot be read; 4096 bytes at most, the kernel's limit.
bool ReadText(const std::string& path, std::string& text);

// The first word of the text; empty if there is none.
std::string FirstWord(const std::string& text);

}  // namespace DeviceFile
