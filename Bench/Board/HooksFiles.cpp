// What a program calls on descriptors.
#include <fcntl.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
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

template <typename RealOpen>
int OpenPath(RealOpen& real, const char* path, int flags, mode_t mode) {
    BoardState* state = AttachedState();
    bool passedOn = true;
    const int file = state == nullptr ? -1 : OpenFile(*state, Call::Open, path, flags, mode, passedOn);
    return passedOn ? real(path, flags, mode) : file;
}

template <typename RealOpen>
int OpenPathAt(RealOpen& real, int folder, const char* path, int flags, mode_t mode) {
    BoardState* state = AttachedState();
    bool passedOn = true;
    const int file = state == nullptr ? -1 : OpenFile(*state, Call::Open, path, flags, mode, passedOn);
    return passedOn ? real(folder, path, flags, mode) : file;
}

// The board's node behind the descriptor; family None sends the call on.
Node NodeOf(BoardState* state, int file) { return state == nullptr ? Node{} : FileNode(file); }

// 0, or -1 with errno, for an act on a file that needs its card.
int CheckCard(BoardState& state, Node node, Call call, bool writing) {
    if (CountOrFail(state, call) != 0) {
        return -1;
    }
    if (node.family != Family::Card) {
        return 0;
    }
    const BoardLock lock(state);
    const int error = CardAccessError(state, writing);
    if (error != 0) {
        errno = error;
    }
    return error == 0 ? 0 : -1;
}

template <typename RealSync>
int Sync(RealSync& real, int file) {
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    if (node.family != Family::None) {
        WaitForSlowCard(*state, node);
        if (CheckCard(*state, node, Call::Sync, false) != 0) {
            return -1;
        }
    }
    return real(file);
}

template <typename RealSeek, typename Offset>
Offset Seek(RealSeek& real, int file, Offset offset, int whence) {
    BoardState* state = AttachedState();
    if (NodeOf(state, file).family != Family::None && CountOrFail(*state, Call::Seek) != 0) {
        return -1;
    }
    return real(file, offset, whence);
}

template <typename RealTruncate, typename Offset>
int Truncate(RealTruncate& real, int file, Offset length) {
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    if (node.family != Family::None && CheckCard(*state, node, Call::Truncate, true) != 0) {
        return -1;
    }
    return real(file, length);
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
    errno = ENODEV;
    return -1;
}

template <typename RealControl>
int Control(RealControl& real, int file, int command, void* argument) {
    const int result = real(file, command, argument);
    if (result >= 0 && (command == F_DUPFD || command == F_DUPFD_CLOEXEC)) {
        CopyFile(file, result);
    }
    return result;
}

}  // namespace

// The names are those of libc.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return OpenPath(Real::open, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return OpenPath(Real::open64, path, flags, mode);
}

int __open_2(const char* path, int flags) { return OpenPath(Real::open, path, flags, 0); }
int __open64_2(const char* path, int flags) { return OpenPath(Real::open64, path, flags, 0); }
int creat(const char* path, mode_t mode) { return open(path, O_WRONLY | O_CREAT | O_TRUNC, mode); }
int creat64(const char* path, mode_t mode) { return open64(path, O_WRONLY | O_CREAT | O_TRUNC, mode); }

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return OpenPathAt(Real::openat, folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return OpenPathAt(Real::openat64, folder, path, flags, mode);
}

int close(int file) {
    BoardState* state = AttachedState();
    if (NodeOf(state, file).family == Family::None) {
        return Real::close(file);
    }
    const DeviceCall call(*state, IsDevice(FileNode(file)));
    const int failed = CountOrFail(*state, Call::Close);
    const int savedErrno = errno;
    const int result = CloseFile(file);  // the descriptor is gone also where close fails
    errno = failed != 0 ? savedErrno : errno;
    return failed != 0 ? -1 : result;
}

int dup(int file) noexcept {
    const int copy = Real::dup(file);
    if (copy >= 0) {
        CopyFile(file, copy);
    }
    return copy;
}

int dup2(int file, int copy) noexcept {
    const int result = Real::dup2(file, copy);
    if (result >= 0 && file != copy) {
        CopyFile(file, copy);
    }
    return result;
}

int dup3(int file, int copy, int flags) noexcept {
    const int result = Real::dup3(file, copy, flags);
    if (result >= 0) {
        CopyFile(file, copy);
    }
    return result;
}

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
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    return node.family == Family::None ? Real::read(file, data, size) : ReadFile(*state, file, node, data, size);
}

ssize_t __read_chk(int file, void* data, size_t size, size_t space) {
    if (size > space) {
        std::abort();
    }
    return read(file, data, size);
}

ssize_t write(int file, const void* data, size_t size) {
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    return node.family == Family::None ? Real::write(file, data, size) : WriteFile(*state, file, node, data, size);
}

ssize_t readv(int file, const iovec* parts, int count) {
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    if (node.family == Family::None) {
        return Real::readv(file, parts, count);
    }
    char whole[GatherSize];
    std::size_t size = 0;
    for (int i = 0; i < count; ++i) {
        size = std::min(size + parts[i].iov_len, sizeof(whole));
    }
    const ssize_t got = ReadFile(*state, file, node, whole, size);
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

// One write for the device, however it came; a long one to an ordinary file may be cut, as the kernel may.
ssize_t writev(int file, const iovec* parts, int count) {
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    if (node.family == Family::None) {
        return Real::writev(file, parts, count);
    }
    char whole[GatherSize];
    std::size_t size = 0;
    for (int i = 0; i < count && size < sizeof(whole); ++i) {
        const std::size_t part = std::min(parts[i].iov_len, sizeof(whole) - size);
        std::memcpy(whole + size, parts[i].iov_base, part);
        size += part;
    }
    return WriteFile(*state, file, node, whole, size);
}

ssize_t pread64(int file, void* data, size_t size, off64_t offset) {
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    if (node.family == Family::None) {
        return Real::pread64(file, data, size, offset);
    }
    const off64_t before = Real::lseek64(file, 0, SEEK_CUR);
    Real::lseek64(file, offset, SEEK_SET);
    const ssize_t result = ReadFile(*state, file, node, data, size);
    Real::lseek64(file, before, SEEK_SET);
    return result;
}

ssize_t pread(int file, void* data, size_t size, off_t offset) { return pread64(file, data, size, offset); }

ssize_t pwrite64(int file, const void* data, size_t size, off64_t offset) {
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    if (node.family == Family::None) {
        return Real::pwrite64(file, data, size, offset);
    }
    const off64_t before = Real::lseek64(file, 0, SEEK_CUR);
    Real::lseek64(file, offset, SEEK_SET);
    const ssize_t result = WriteFile(*state, file, node, data, size);
    Real::lseek64(file, before, SEEK_SET);
    return result;
}

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
    BoardState* state = AttachedState();
    const Node node = NodeOf(state, file);
    if (node.family == Family::None) {
        return Real::ioctl(file, request, argument);
    }
    const DeviceCall call(*state);
    if (CountOrFail(*state, Call::Ioctl) != 0) {
        return -1;
    }
    if (node.family == Family::Socket && request == SIOCGIFHWADDR) {
        return HardwareAddress(static_cast<ifreq*>(argument));
    }
    if (node.family != Family::Spi) {
        return Real::ioctl(file, request, argument);
    }
    const BoardLock lock(*state);
    int result = 0;
    const int error = SpiIoctl(*state, request, argument, result);
    if (error != 0) {
        errno = error;
    }
    return error == 0 ? result : -1;
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
