// Opening, reading, writing and closing files of the board, for both the descriptor hooks and the stream hooks.
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

constexpr const char* DeviceTree = "/sys/";  // folders of devices are ordinary folders
constexpr std::size_t PageSize = 4096;       // the most that a kernel file holds

// Writes the device file's present text into the memory file of the descriptor. 0 or an error number.
int Regenerate(const BoardFile& file) {
    char text[PageSize];
    Buffer content{text, sizeof(text)};
    {
        const BoardLock state(*file.state);
        if (!NodeAlive(*state, file.node)) {
            return ENODEV;
        }
        NodeContent(*state, file.node, content);
        if (IsGpioValue(file.node)) {
            file.open->seenEdges.store(EdgeCount(*state, LineOf(file.node)));
        }
    }
    const bool done = Real::ftruncate64(file.file, 0) == 0 &&
                      Real::pwrite64(file.file, text, content.used, 0) == static_cast<ssize_t>(content.used);
    return done ? 0 : EIO;
}

int OpenDevice(Node node, int flags) {
    if ((flags & O_DIRECTORY) != 0) {
        return Answer(ENOTDIR);
    }
    constexpr unsigned CloseOnExec = 1;
    const int file = static_cast<int>(syscall(SYS_memfd_create, "board", (flags & O_CLOEXEC) != 0 ? CloseOnExec : 0U));
    if (file < 0) {
        return -1;
    }
    RememberFile(file, node, flags & O_ACCMODE);
    const BoardFile opened = FindFile(file);
    const int error = !opened ? EMFILE : IsCharacterDevice(node) ? 0 : Regenerate(opened);
    if (error != 0) {
        CloseFile(file);
        return Answer(error);
    }
    opened.open->seenEdges.store(~0U);  // poll reports an edge for a newly opened file
    return file;
}

int OpenOrdinary(BoardState& state, const Target& target, int flags, mode_t mode) {
    const bool writing = (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
    if (target.node.family == Family::Card && writing) {
        const BoardLock lock(state);
        const int error = CardAccessError(state, true);
        if (error == EROFS || (error == ENOSPC && Real::access(target.path, F_OK) != 0)) {
            return Answer(error);
        }
    }
    const int file = Real::open64(target.path, flags, mode);
    if (file >= 0) {
        RememberFile(file, target.node, flags & O_ACCMODE);
    }
    return file;
}

ssize_t WriteToCard(const BoardFile& file, const void* data, std::size_t size) {
    const ssize_t written = Real::write(file.file, data, size);
    const DeviceCall call(*file.state);  // from here on only the board's own work
    char link[32];
    std::snprintf(link, sizeof(link), "/proc/self/fd/%d", file.file);
    char path[PathLength] = {};
    const char* name = readlink(link, path, sizeof(path) - 1) > 0 ? std::strrchr(path, '/') : nullptr;
    if (written >= 0 && name != nullptr) {
        Trace(*BoardLock(*file.state), 0, "card %s %zd", name + 1, written);
    }
    return written;
}

// 0 or an error number.
int WriteDevice(const BoardFile& file, const void* data, std::size_t size, std::size_t& moved) {
    const BoardLock state(*file.state);
    moved = size;
    if (file.node.family == Family::Spi) {
        return SpiWrite(*state, data, size, moved);
    }
    if (!NodeAlive(*state, file.node)) {
        return ENODEV;
    }
    return size > 0 ? NodeWrite(*state, file.node, {static_cast<const char*>(data), size}) : 0;
}

}  // namespace

int CountOrFail(BoardState& state, Call call) { return Answer(CountCall(*BoardLock(state), call)); }

int CountOrFail(const BoardFile& file, Call call, bool writing) {
    const BoardLock state(*file.state);
    int error = CountCall(*state, call);
    if (error == 0 && file.node.family == Family::Card) {
        error = CardAccessError(*state, writing);
    }
    return Answer(error);
}

int OpenPath(BoardState& state, Call kind, const char* path, int flags, mode_t mode, bool& passedOn) {
    DeviceCall call(state);  // finding out whether the path is the board's counts in any case
    Target target;
    Resolve(state, path, target);
    passedOn = !target.inside;
    call.Is(target.inside && (IsDevice(target.node) || std::strncmp(path, DeviceTree, std::strlen(DeviceTree)) == 0));
    if (passedOn || CountOrFail(state, kind) != 0) {
        return -1;
    }
    if (target.error != 0) {
        return Answer(target.error);
    }
    return IsDevice(target.node) ? OpenDevice(target.node, flags) : OpenOrdinary(state, target, flags, mode);
}

ssize_t ReadFile(const BoardFile& file, void* data, std::size_t size) {
    if (file.node.family == Family::Socket) {
        return ReceiveBytes(file, "read", data, size, 0);
    }
    const DeviceCall call(*file.state, IsDevice(file.node));
    if (CountOrFail(*file.state, "read") != 0) {
        return -1;
    }
    if (file.open->access == O_WRONLY) {
        return Answer<ssize_t>(EBADF);
    }
    if (file.node.family == Family::Spi) {
        std::size_t moved = 0;
        const int error = SpiRead(*BoardLock(*file.state), data, size, moved);
        return Answer(error, static_cast<ssize_t>(moved));
    }
    int error = 0;
    if (file.node.family == Family::Card) {
        error = CardAccessError(*BoardLock(*file.state), false);
    } else if (IsDevice(file.node) && file.node.family != Family::Memory &&
               Real::lseek64(file.file, 0, SEEK_CUR) == 0) {
        error = Regenerate(file);
    }
    return error == 0 ? Real::read(file.file, data, size) : Answer<ssize_t>(error);
}

ssize_t WriteFile(const BoardFile& file, const void* data, std::size_t size) {
    if (file.node.family == Family::Socket) {
        return SendBytes(file, "write", data, size, 0);
    }
    const DeviceCall call(*file.state, IsDevice(file.node));
    if (CountOrFail(*file.state, "write") != 0) {
        return -1;
    }
    if (file.open->access == O_RDONLY) {
        return Answer<ssize_t>(EBADF);
    }
    if (file.node.family == Family::Regular) {
        return Real::write(file.file, data, size);
    }
    if (file.node.family == Family::Card) {
        WaitForSlowCard(file);
        const int error = CardAccessError(*BoardLock(*file.state), true);
        return error == 0 ? WriteToCard(file, data, size) : Answer<ssize_t>(error);
    }
    std::size_t moved = 0;
    const int error = WriteDevice(file, data, size, moved);
    return Answer(error, static_cast<ssize_t>(moved));
}

int CloseFile(int file) {
    if (const BoardFile socket = FindSocket(file); socket && socket.state->exact.wanted) {
        const int savedErrno = errno;
        ShutDownWire(socket);
        errno = savedErrno;
    }
    ForgetFile(file);
    return Real::close(file);
}

void WaitForSlowCard(const BoardFile& file) {
    if (file.node.family == Family::Card) {
        const std::int64_t wait = BoardLock(*file.state)->card.slowMilliseconds;
        if (wait > 0) {
            SleepSimulated(*file.state, wait * (NanoSecondsPerSecond / 1000), nullptr);
        }
    }
}

}  // namespace Bench
