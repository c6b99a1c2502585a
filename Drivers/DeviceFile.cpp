#include "Drivers/DeviceFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstddef>

namespace {
constexpr std::size_t MaxText = 4096;
constexpr const char* WhiteSpace = " \t\n\v\f\r";
}  // namespace

FileDescriptor::FileDescriptor(const std::string& path, int flags) : m_descriptor(open(path.c_str(), flags)) {}

FileDescriptor::~FileDescriptor() {
    if (IsOpen()) {
        close(m_descriptor);
    }
}

bool DeviceFile::DirectoryOpens(const std::string& path) {
    return FileDescriptor(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC).IsOpen();
}

DeviceFile::WriteResult DeviceFile::WriteText(const std::string& path, const std::string& text) {
    const FileDescriptor file(path, O_WRONLY | O_CLOEXEC);
    if (!file.IsOpen()) {
        return WriteResult::NotOpened;
    }
    const ssize_t written = write(file.Get(), text.data(), text.size());
    return written == static_cast<ssize_t>(text.size()) ? WriteResult::Written : WriteResult::Refused;
}

bool DeviceFile::ReadText(const std::string& path, std::string& text) {
    text.clear();
    const FileDescriptor file(path, O_RDONLY | O_CLOEXEC);
    if (!file.IsOpen()) {
        return false;
    }
    std::array<char, MaxText> buffer;
    const ssize_t length = read(file.Get(), buffer.data(), buffer.size());
    if (length > 0) {
        text.assign(buffer.data(), static_cast<std::size_t>(length));
    }
    return true;
}

std::string DeviceFile::FirstWord(const std::string& text) {
    const std::size_t start = text.find_first_not_of(WhiteSpace);
    if (start == std::string::npos) {
        return {};
    }
    return text.substr(start, text.find_first_of(WhiteSpace, start) - start);
}
