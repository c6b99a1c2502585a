// Calls on descriptors.
#include <fcntl.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr std::size_t GatherSize = 4096;

mode_t ModeOf(int flags, va_list arguments) {
    const bool given = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return given ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

// `folder`: the first argument of openat, none for open.
template <typename RealOpen, typename... Folder>
int Open(RealOpen& real, const char* path, int flags, mode_t mode, Folder... folder) {
    BoardState* state = AttachedState();
    bool passedOn = true;
    const int file = state == nullptr ? -1 : OpenPath(*state, "open", path, flags, mode, passedOn);
    return passedOn ? real(folder..., path, flags, mode) : file;
}

template <typename RealSync>
int Sync(RealSync& real, int file) {
    const BoardFile found = FindFile(file);
    if (found) {
        WaitForSlowCard(found);
        if (CountOrFail(found, "sync", false) != 0) {
            return -1;
        }
    }
    return real(file);
}

template <typename RealSeek, typename Offset>
Offset Seek(RealSeek& real, int file, Offset offset, int whence) {
    const BoardFile found = FindFile(file);
    return found && CountOrFail(*found.state, "seek") != 0 ? -1 : real(file, offset, whence);
}

template <typename RealTruncate, typename Offset>
int Truncate(RealTruncate& real, int file, Offset length) {
    const BoardFile found = FindFile(file);
    return found && CountOrFail(found, "truncate", true) != 0 ? -1 : real(file, length);
}

struct Interface {
    const char* name;
    unsigned short type;
    unsigned char address[6];
};

constexpr Interface Interfaces[] = {
    {"eth0", ARPHRD_ETHER, {0x02, 0x1A, 0x6C, 0x00, 0x3E, 0xF5}},
    {"lo", ARPHRD_LOOPBACK, {}},
};

int HardwareAddress(ifreq* request) {
    for (const Interface& each : Interfaces) {
        if (std::strncmp(request->ifr_name, each.name, sizeof(request->ifr_name)) == 0) {
            request->ifr_hwaddr = {};
            request->ifr_hwaddr.sa_family = each.type;
            std::memcpy(request->ifr_hwaddr.sa_data, each.address, sizeof(each.address));
            return 0;
        }
    }
    return Answer(ENODEV);
}

// `copy` is a new descriptor of the file, or below 0.
int Copied(int file, int copy) {
    if (copy >= 0 && copy != file) {
        CopyFile(file, copy);
    }
    return copy;
}

template <typename RealControl>
int Control(RealControl& real, int file, int command, void* argument) {
    const int result = real(file, command, argument);
    return command == F_DUPFD || command == F_DUPFD_CLOEXEC ? Copied(file, result) : result;
}

// Reads or writes at an offset by `transfer`, and leaves the file's position unchanged.
template <typename Transfer>
ssize_t AtOffset(int file, off64_t offset, Transfer transfer) {
    const off64_t before = Real::lseek64(file, 0, SEEK_CUR);
    Real::lseek64(file, offset, SEEK_SET);
    const ssize_t result = transfer();
    Real::lseek64(file, before, SEEK_SET);
    return result;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Open(Real::open, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Open(Real::open64, path, flags, mode);
}

int __open_2(const char* path, int flags) { return Open(Real::open, path, flags, 0); }
int __open64_2(const char* path, int flags) { return Open(Real::open64, path, flags, 0); }
int creat(const char* path, mode_t mode) { return open(path, O_WRONLY | O_CREAT | O_TRUNC, mode); }
int creat64(const char* path, mode_t mode) { return open64(path, O_WRONLY | O_CREAT | O_TRUNC, mode); }

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Open(Real::openat, path, flags, mode, folder);
}

int openat64(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Open(Real::openat64, path, flags, mode, folder);
}

int close(int file) {
    const BoardFile found = FindFile(file);
    if (!found) {
        return Real::close(file);
    }
    const DeviceCall call(*found.state, IsDevice(found.node));
    const int error = CountCall(*BoardLock(*found.state), "close");
    return Answer(error, CloseFile(file));  // the descriptor is closed even if close fails
}

int dup(int file) noexcept { return Copied(file, Real::dup(file)); }
int dup2(int file, int copy) noexcept { return Copied(file, Real::dup2(file, copy)); }
int dup3(int file, int copy, int flags) noexcept { return Copied(file, Real::dup3(file, copy, flags)); }

int fcntl(int file, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return Control(Real::fcntl, file, command, argument);
}

int fcntl64(int file, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return Control(Real::fcntl64, file, command, argument);
}

ssize_t read(int file, void* data, size_t size) {
    const BoardFile found = FindFile(file);
    return found ? ReadFile(found, data, size) : Real::read(file, data, size);
}

ssize_t __read_chk(int file, void* data, size_t size, size_t space) {
    if (size > space) {
        std::abort();
    }
    return read(file, data, size);
}

ssize_t write(int file, const void* data, size_t size) {
    const BoardFile found = FindFile(file);
    return found ? WriteFile(found, data, size) : Real::write(file, data, size);
}

ssize_t readv(int file, const iovec* parts, int count) {
    const BoardFile found = FindFile(file);
    if (!found) {
        return Real::readv(file, parts, count);
    }
    char whole[GatherSize];
    std::size_t size = 0;
    for (int i = 0; i < count; ++i) {
        size = std::min(size + parts[i].iov_len, sizeof(whole));
    }
    const ssize_t got = ReadFile(found, whole, size);
    std::size_t left = got > 0 ? static_cast<std::size_t>(got) : 0;
    const char* next = whole;
    for (int i = 0; i < count && left > 0; ++i) {
        const std::size_t part = std::min(left, parts[i].iov_len);
        std::memcpy(parts[i].iov_base, next, part);
        next += part;
        left -= part;
    }
    return got;
}

// One write for the device in any case; a long one to an ordinary file may be cut, as the kernel may do.
ssize_t writev(int file, const iovec* parts, int count) {
    const BoardFile found = FindFile(file);
    if (!found) {
        return Real::writev(file, parts, count);
    }
    char whole[GatherSize];
    std::size_t size = 0;
    for (int i = 0; i < count && size < sizeof(whole); ++i) {
        const std::size_t part = std::min(parts[i].iov_len, sizeof(whole) - size);
        std::memcpy(whole + size, parts[i].iov_base, part);
        size += part;
    }
    return WriteFile(found, whole, size);
}

ssize_t pread64(int file, void* data, size_t size, off64_t offset) {
    const BoardFile found = FindFile(file);
    return found ? AtOffset(file, offset, [&] { return ReadFile(found, data, size); })
                 : Real::pread64(file, data, size, offset);
}

ssize_t pwrite64(int file, const void* data, size_t size, off64_t offset) {
    const BoardFile found = FindFile(file);
    return found ? AtOffset(file, offset, [&] { return WriteFile(found, data, size); })
                 : Real::pwrite64(file, data, size, offset);
}

ssize_t pread(int file, void* data, size_t size, off_t offset) { return pread64(file, data, size, offset); }
ssize_t pwrite(int file, const void* data, size_t size, off_t offset) { return pwrite64(file, data, size, offset); }
off_t lseek(int file, off_t offset, int whence) noexcept { return Seek(Real::lseek, file, offset, whence); }
off64_t lseek64(int file, off64_t offset, int whence) noexcept { return Seek(Real::lseek64, file, offset, whence); }
int fsync(int file) { return Sync(Real::fsync, file); }
int fdatasync(int file) { return Sync(Real::fdatasync, file); }
int ftruncate(int file, off_t length) noexcept { return Truncate(Real::ftruncate, file, length); }
int ftruncate64(int file, off64_t length) noexcept { return Truncate(Real::ftruncate64, file, length); }

int ioctl(int file, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    const BoardFile found = FindFile(file);
    if (!found) {
        return Real::ioctl(file, request, argument);
    }
    const DeviceCall call(*found.state);
    if (CountOrFail(*found.state, "ioctl") != 0) {
        return -1;
    }
    if (found.node.family == Family::Socket && request == SIOCGIFHWADDR) {
        return HardwareAddress(static_cast<ifreq*>(argument));
    }
    if (found.node.family != Family::Spi) {
        return Real::ioctl(file, request, argument);
    }
    int result = 0;
    const int error = SpiIoctl(*BoardLock(*found.state), request, argument, result);
    return Answer(error, result);
}
}
