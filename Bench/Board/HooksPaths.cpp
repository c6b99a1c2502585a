// What a program calls on paths.
#include <dirent.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

enum class Finding { PassOn, Refused, Inside };

// Where the path leads, the call counted. Refused: errno is set.
Finding Find(BoardState* state, Call call, const char* path, Target& target, bool writing = false) {
    if (state == nullptr) {
        return Finding::PassOn;
    }
    Resolve(*state, path, target);
    if (!target.inside) {
        return Finding::PassOn;
    }
    if (CountOrFail(*state, call) != 0) {
        return Finding::Refused;
    }
    if (target.error == 0 && writing && target.node.family == Family::Card) {
        const BoardLock lock(*state);
        const int error = CardAccessError(*state, true);
        target.error = error == ENOSPC && call != Call::Mkdir ? 0 : error;
    }
    if (target.error != 0) {
        errno = target.error;
        return Finding::Refused;
    }
    return Finding::Inside;
}

template <typename RealCall, typename... Arguments>
int OnPath(RealCall& real, Call call, bool writing, const char* path, Arguments... arguments) {
    Target target;
    switch (Find(AttachedState(), call, path, target, writing)) {
        case Finding::PassOn:
            return real(path, arguments...);
        case Finding::Refused:
            return -1;
        case Finding::Inside:
            break;
    }
    return real(target.path, arguments...);
}

// The type of a device over that of the plain file that stands for it.
template <typename Status>
void ShowType(Node node, Status& status) {
    mode_t type = status.st_mode & S_IFMT;
    if (IsCharacterDevice(node)) {
        type = S_IFCHR;
    } else if (node.family == Family::Regular && node.file == BlockDevice) {
        type = S_IFBLK;
    }
    status.st_mode = (status.st_mode & ~static_cast<mode_t>(S_IFMT)) | type;
}

template <typename RealCall, typename Status>
int StatPath(RealCall& real, const char* path, Status* status) {
    Target target;
    switch (Find(AttachedState(), Call::Stat, path, target)) {
        case Finding::PassOn:
            return real(path, status);
        case Finding::Refused:
            return -1;
        case Finding::Inside:
            break;
    }
    const int result = real(target.path, status);
    if (result == 0) {
        ShowType(target.node, *status);
    }
    return result;
}

template <typename RealCall, typename Status>
int StatFile(RealCall& real, int file, Status* status) {
    BoardState* state = AttachedState();
    const Node node = state == nullptr ? Node{} : FileNode(file);
    if (node.family == Family::None) {
        return real(file, status);
    }
    if (CountOrFail(*state, Call::Stat) != 0) {
        return -1;
    }
    const int result = real(file, status);
    if (result == 0) {
        ShowType(node, *status);
    }
    return result;
}

template <typename RealCall, typename Status>
int StatAt(RealCall& real, int folder, const char* path, Status* status, int flags) {
    Target target;
    switch (Find(AttachedState(), Call::Stat, path, target)) {
        case Finding::PassOn:
            return real(folder, path, status, flags);
        case Finding::Refused:
            return -1;
        case Finding::Inside:
            break;
    }
    const int result = real(folder, target.path, status, flags);
    if (result == 0) {
        ShowType(target.node, *status);
    }
    return result;
}

constexpr long FatMagic = 0x4d44;
constexpr long NameLength = 255;

void FillSpace(const CardState& card, struct statfs& space) {
    space.f_type = FatMagic;
    space.f_namelen = NameLength;
    space.f_frsize = static_cast<decltype(space.f_frsize)>(card.blockSize);
    space.f_bsize = static_cast<decltype(space.f_bsize)>(card.blockSize);
    space.f_blocks = static_cast<fsblkcnt_t>(card.totalBlocks);
    space.f_bfree = static_cast<fsblkcnt_t>(card.full ? 0 : card.freeBlocks);
    space.f_bavail = space.f_bfree;
}

void FillSpace(const CardState& card, struct statfs64& space) {
    space.f_type = FatMagic;
    space.f_namelen = NameLength;
    space.f_frsize = static_cast<decltype(space.f_frsize)>(card.blockSize);
    space.f_bsize = static_cast<decltype(space.f_bsize)>(card.blockSize);
    space.f_blocks = card.totalBlocks;
    space.f_bfree = card.full ? 0 : card.freeBlocks;
    space.f_bavail = space.f_bfree;
}

template <typename Space>
void FillVfsSpace(const CardState& card, Space& space) {
    space.f_namemax = NameLength;
    space.f_bsize = card.blockSize;
    space.f_frsize = card.blockSize;
    space.f_blocks = static_cast<decltype(space.f_blocks)>(card.totalBlocks);
    space.f_bfree = static_cast<decltype(space.f_bfree)>(card.full ? 0 : card.freeBlocks);
    space.f_bavail = space.f_bfree;
}

void FillSpace(const CardState& card, struct statvfs& space) { FillVfsSpace(card, space); }
void FillSpace(const CardState& card, struct statvfs64& space) { FillVfsSpace(card, space); }

template <typename Space>
int CardSpace(BoardState& state, Space* space) {
    const BoardLock lock(state);
    const int error = CardAccessError(state, false);
    if (error != 0) {
        errno = error;
        return -1;
    }
    std::memset(space, 0, sizeof(*space));
    FillSpace(state.card, *space);
    return 0;
}

template <typename RealCall, typename Space>
int SpaceOfPath(RealCall& real, const char* path, Space* space) {
    BoardState* state = AttachedState();
    Target target;
    switch (Find(state, Call::Statfs, path, target)) {
        case Finding::PassOn:
            return real(path, space);
        case Finding::Refused:
            return -1;
        case Finding::Inside:
            break;
    }
    return target.node.family == Family::Card ? CardSpace(*state, space) : real(target.path, space);
}

template <typename RealCall, typename Space>
int SpaceOfFile(RealCall& real, int file, Space* space) {
    BoardState* state = AttachedState();
    const Node node = state == nullptr ? Node{} : FileNode(file);
    if (node.family == Family::None) {
        return real(file, space);
    }
    if (CountOrFail(*state, Call::Statfs) != 0) {
        return -1;
    }
    return node.family == Family::Card ? CardSpace(*state, space) : real(file, space);
}

int Unmount(BoardState& state, const char* target) {
    if (CountOrFail(state, Call::Umount) != 0) {
        return -1;
    }
    const bool inUse = CardFilesOpen();
    const BoardLock lock(state);
    const int error = UnmountCard(state, target, inUse);
    if (error != 0) {
        errno = error;
    }
    return error == 0 ? 0 : -1;
}

}  // namespace

// The names are those of libc.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int stat(const char* path, struct stat* status) noexcept { return StatPath(Real::stat, path, status); }
int stat64(const char* path, struct stat64* status) noexcept { return StatPath(Real::stat64, path, status); }
int lstat(const char* path, struct stat* status) noexcept { return StatPath(Real::lstat, path, status); }
int lstat64(const char* path, struct stat64* status) noexcept { return StatPath(Real::lstat64, path, status); }
int fstat(int file, struct stat* status) noexcept { return StatFile(Real::fstat, file, status); }
int fstat64(int file, struct stat64* status) noexcept { return StatFile(Real::fstat64, file, status); }

// The older names behind the same calls: the thread sanitizer's own fstat goes by them.
int __xstat(int /*version*/, const char* path, struct stat* status) noexcept {
    return StatPath(Real::stat, path, status);
}
int __xstat64(int /*version*/, const char* path, struct stat64* status) noexcept {
    return StatPath(Real::stat64, path, status);
}
int __lxstat(int /*version*/, const char* path, struct stat* status) noexcept {
    return StatPath(Real::lstat, path, status);
}
int __lxstat64(int /*version*/, const char* path, struct stat64* status) noexcept {
    return StatPath(Real::lstat64, path, status);
}
int __fxstat(int /*version*/, int file, struct stat* status) noexcept { return StatFile(Real::fstat, file, status); }
int __fxstat64(int /*version*/, int file, struct stat64* status) noexcept {
    return StatFile(Real::fstat64, file, status);
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    return StatAt(Real::fstatat, folder, path, status, flags);
}

int fstatat64(int folder, const char* path, struct stat64* status, int flags) noexcept {
    return StatAt(Real::fstatat64, folder, path, status, flags);
}

int statfs(const char* path, struct statfs* space) noexcept { return SpaceOfPath(Real::statfs, path, space); }
int statfs64(const char* path, struct statfs64* space) noexcept { return SpaceOfPath(Real::statfs64, path, space); }
int statvfs(const char* path, struct statvfs* space) noexcept { return SpaceOfPath(Real::statvfs, path, space); }
int statvfs64(const char* path, struct statvfs64* space) noexcept { return SpaceOfPath(Real::statvfs64, path, space); }
int fstatfs(int file, struct statfs* space) noexcept { return SpaceOfFile(Real::fstatfs, file, space); }
int fstatfs64(int file, struct statfs64* space) noexcept { return SpaceOfFile(Real::fstatfs64, file, space); }

int access(const char* path, int mode) noexcept { return OnPath(Real::access, Call::Access, false, path, mode); }
int mkdir(const char* path, mode_t mode) noexcept { return OnPath(Real::mkdir, Call::Mkdir, true, path, mode); }
int rmdir(const char* path) noexcept { return OnPath(Real::rmdir, Call::Remove, true, path); }
int remove(const char* path) noexcept { return OnPath(Real::remove, Call::Remove, true, path); }
int unlink(const char* path) noexcept { return OnPath(Real::unlink, Call::Remove, true, path); }
int chmod(const char* path, mode_t mode) noexcept { return OnPath(Real::chmod, Call::Chmod, true, path, mode); }
int truncate(const char* path, off_t length) noexcept {
    return OnPath(Real::truncate, Call::Truncate, true, path, length);
}
int truncate64(const char* path, off64_t length) noexcept {
    return OnPath(Real::truncate64, Call::Truncate, true, path, length);
}

int rename(const char* from, const char* to) noexcept {
    Target target;
    const char* realTo = to;
    BoardState* state = AttachedState();
    if (state != nullptr) {
        Resolve(*state, to, target);
        if (target.inside && target.error != 0) {
            errno = target.error;
            return -1;
        }
        realTo = target.inside ? target.path : to;
    }
    return OnPath(Real::rename, Call::Rename, true, from, realTo);
}

DIR* opendir(const char* path) {
    Target target;
    switch (Find(AttachedState(), Call::Opendir, path, target)) {
        case Finding::PassOn:
            return Real::opendir(path);
        case Finding::Refused:
            return nullptr;
        case Finding::Inside:
            break;
    }
    return Real::opendir(target.path);
}

// A program on the board never mounts anything on the machine.
int mount(const char* source, const char* target, const char* type, unsigned long flags, const void* data) noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::mount(source, target, type, flags, data);
    }
    if (CountOrFail(*state, Call::Mount) != 0) {
        return -1;
    }
    Target folder;
    Resolve(*state, target, folder);
    const BoardLock lock(*state);
    const int error = MountCard(*state, source, target, folder.inside ? folder.path : target, type, flags);
    if (error != 0) {
        errno = error;
    }
    return error == 0 ? 0 : -1;
}

int umount(const char* target) noexcept {
    BoardState* state = AttachedState();
    return state == nullptr ? Real::umount(target) : Unmount(*state, target);
}

int umount2(const char* target, int flags) noexcept {
    BoardState* state = AttachedState();
    return state == nullptr ? Real::umount2(target, flags) : Unmount(*state, target);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
