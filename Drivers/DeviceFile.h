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

// What became of a write.
enum class WriteResult {
    Written,
    Refused,  // the file is there, the kernel did not take the value
    NotOpened,
};

// Whether the kernel offers it: a line's or a channel's directory is there only while somebody has claimed it.
bool DirectoryOpens(const std::string& path);

// In one call; the file is never made.
WriteResult WriteText(const std::string& path, const std::string& text);

// False where the file does not open. What cannot be read is empty; 4096 bytes at most, the kernel's limit.
bool ReadText(const std::string& path, std::string& text);

// Up to the first white space behind the first other character.
std::string FirstWord(const std::string& text);

}  // namespace DeviceFile
