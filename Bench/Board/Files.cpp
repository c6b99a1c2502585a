// Opening, reading, writing and closing files of the board, below both the descriptor hooks and the stream hooks.
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

constexpr const char* DeviceTree = "/sys/";  // folders of devices are ordinary folders
constexpr std::size_t PageSize = 4096;       // what a file of the kernel's can hold

template <typename Result>
Result Refuse(int error, Result result) {
    errno = error;
    return result;
}

// Puts the device file's present text into the memory file behind the descriptor.
int Regenerate(BoardState& state, int file, Node node) {
    char text[PageSize];
    Buffer content{text, sizeof(text)};
    {
        const BoardLock lock(state);
        if (!NodeAlive(state, node)) {
            return ENODEV;
        }
        NodeContent(state, node, content);
        if (IsGpioValue(node)) {
            SetSeenEdges(file, EdgeCount(state, node.first, node.second));
        }
    }
    const bool done = Real::ftruncate64(file, 0) == 0 &&
                      Real::pwrite64(file, text, content.used, 0) == static_cast<ssize_t>(content.used);
    return done ? 0 : EIO;
}

int OpenDevice(BoardState& state, Node node, int flags) {
    if ((flags & O_DIRECTORY) != 0) {
        return Refuse(ENOTDIR, -1);
    }
    constexpr unsigned CloseOnExec = 1;
    const int file = static_cast<int>(syscall(SYS_memfd_create, "board", (flags & O_CLOEXEC) != 0 ? CloseOnExec : 0U));
    if (file < 0) {
        return -1;
    }
    if (!IsCharacterDevice(node)) {
        const int error = Regenerate(state, file, node);
        if (error != 0) {
            Real::close(file);
            return Refuse(error, -1);
        }
    }
    RememberFile(file, node, flags & O_ACCMODE);
    return file;
}

int OpenOrdinary(BoardState& state, const Target& target, int flags, mode_t mode) {
    const bool writing = (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
    if (target.node.family == Family::Card && writing) {
        const BoardLock lock(state);
        const int error = CardAccessError(state, true);
        if (error == EROFS || (error == ENOSPC && Real::access(target.path, F_OK) != 0)) {
            return Refuse(error, -1);
        }
    }
    const int file = Real::open64(target.path, flags, mode);
    if (file >= 0) {
        RememberFile(file, target.node, flags & O_ACCMODE);
    }
    return file;
}

ssize_t WriteToCard(BoardState& state, int file, const void* data, std::size_t size) {
    const ssize_t written = Real::write(file, data, size);
    const DeviceCall call(state);  // from here on the board alone has something to do
    char link[32];
    std::snprintf(link, sizeof(link), "/proc/self/fd/%d", file);
    char path[PathLength] = {};
    const char* name = readlink(link, path, sizeof(path) - 1) > 0 ? std::strrchr(path, '/') : nullptr;
    if (written >= 0 && name != nullptr) {
        const BoardLock lock(state);
        TraceAct(state, "card %s %zd", name + 1, written);
    }
    return written;
}

}  // namespace

int CountOrFail(BoardState& state, Call call) {
    int error = 0;
    {
        const BoardLock lock(state);
        error = CountCall(state, call);
    }
    return error == 0 ? 0 : Refuse(error, -1);
}

int OpenFile(BoardState& state, Call kind, const char* path, int flags, mode_t mode, bool& passedOn) {
    DeviceCall call(state);  // what it takes to see whose path this is counts in any case
    Target target;
    Resolve(state, path, target);
    passedOn = !target.inside;
    call.Is(target.inside && (IsDevice(target.node) || std::strncmp(path, DeviceTree, std::strlen(DeviceTree)) == 0));
    if (passedOn) {
        return -1;
    }
    if (CountOrFail(state, kind) != 0) {
        return -1;
    }
    if (target.error != 0) {
        return Refuse(target.error, -1);
    }
    return IsDevice(target.node) ? OpenDevice(state, target.node, flags) : OpenOrdinary(state, target, flags, mode);
}

ssize_t ReadFile(BoardState& state, int file, Node node, void* data, std::size_t size) {
    if (node.family == Family::Socket) {
        return ReceiveBytes(state, file, node, Call::Read, data, size, 0);
    }
    const DeviceCall call(state, IsDevice(node));
    if (CountOrFail(state, Call::Read) != 0) {
        return -1;
    }
    if (FileAccess(file) == O_WRONLY) {
        return Refuse<ssize_t>(EBADF, -1);
    }
    if (node.family == Family::Spi) {
        std::size_t moved = 0;
        const BoardLock lock(state);
        const int error = SpiRead(state, data, size, moved);
        return error == 0 ? static_cast<ssize_t>(moved) : Refuse<ssize_t>(error, -1);
    }
    int error = 0;
    if (node.family == Family::Card) {
        const BoardLock lock(state);
        error = CardAccessError(state, false);
    } else if (IsDevice(node) && node.family != Family::Memory && Real::lseek64(file, 0, SEEK_CUR) == 0) {
        error = Regenerate(state, file, node);
    }
    return error == 0 ? Real::read(file, data, size) : Refuse<ssize_t>(error, -1);
}

ssize_t WriteFile(BoardState& state, int file, Node node, const void* data, std::size_t size) {
    if (node.family == Family::Socket) {
        return SendBytes(state, file, Call::Write, data, size, 0);
    }
    const DeviceCall call(state, IsDevice(node));
    if (CountOrFail(state, Call::Write) != 0) {
        return -1;
    }
    if (FileAccess(file) == O_RDONLY) {
        return Refuse<ssize_t>(EBADF, -1);
    }
    if (node.family == Family::Regular) {
        return Real::write(file, data, size);
    }
    if (node.family == Family::Card) {
        WaitForSlowCard(state, node);
        int error = 0;
        {
            const BoardLock lock(state);
            error = CardAccessError(state, true);
        }
        return error == 0 ? WriteToCard(state, file, data, size) : Refuse<ssize_t>(error, -1);
    }
    const BoardLock lock(state);
    int error = 0;
    std::size_t moved = size;
    if (node.family == Family::Spi) {
        error = SpiWrite(state, data, size, moved);
    } else if (!NodeAlive(state, node)) {
        error = ENODEV;
    } else if (size > 0) {
        error = NodeWrite(state, node, {static_cast<const char*>(data), size});
    }
    return error == 0 ? static_cast<ssize_t>(moved) : Refuse<ssize_t>(error, -1);
}

int CloseFile(int file) {
    ForgetFile(file);
    return Real::close(file);
}

void WaitForSlowCard(BoardState& state, Node node) {
    std::int64_t wait = 0;
    if (node.family == Family::Card) {
        const BoardLock lock(state);
        wait = state.card.slowMilliseconds * (NanoSecondsPerSecond / 1000);
    }
    if (wait > 0) {
        SleepSimulated(state, wait, nullptr);
    }
}

}  // namespace Bench
