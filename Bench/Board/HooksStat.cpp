// Calls that describe files and file systems.
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>

#include "Bench/Board/OnPath.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

// Calls `real`, and shows the type of the device instead of that of the plain file that represents it.
template <typename Status, typename RealCall, typename... Arguments>
int StatNode(Node node, Status* status, RealCall& real, Arguments... arguments) {
    const int result = real(arguments...);
    const bool isBlockDevice = node.family == Family::Regular && node.file == BlockDevice;
    if (result == 0 && (isBlockDevice || IsCharacterDevice(node))) {
        const mode_t type = isBlockDevice ? S_IFBLK : S_IFCHR;
        status->st_mode = (status->st_mode & ~static_cast<mode_t>(S_IFMT)) | type;
    }
    return result;
}

template <typename RealCall, typename Status>
int StatPath(RealCall& real, const char* path, Status* status) {
    return OnPath("stat", false, path,
                  [&](const char* target, Node node) { return StatNode(node, status, real, target, status); });
}

template <typename RealCall, typename Status>
int StatAt(RealCall& real, int folder, const char* path, Status* status, int flags) {
    return OnPath("stat", false, path, [&](const char* target, Node node) {
        return StatNode(node, status, real, folder, target, status, flags);
    });
}

template <typename RealCall, typename Status>
int StatFile(RealCall& real, int file, Status* status) {
    return OnFile("stat", file, [&](Node node) { return StatNode(node, status, real, file, status); });
}

template <typename Field, typename Number>
void Set(Field& field, Number number) {
    field = static_cast<Field>(number);
}

template <typename Space>
int CardSpace(Space* space) {
    constexpr long FatMagic = 0x4d44;
    constexpr long NameLength = 255;
    const BoardLock state(*AttachedState());
    if (const int error = CardAccessError(*state, false); error != 0) {
        return Answer(error);
    }
    const CardState& card = state->card;
    *space = {};
    if constexpr (requires { space->f_type; }) {
        space->f_type = FatMagic;
        space->f_namelen = NameLength;
    } else {
        space->f_namemax = NameLength;
    }
    Set(space->f_frsize, card.blockSize);
    Set(space->f_bsize, card.blockSize);
    Set(space->f_blocks, card.totalBlocks);
    Set(space->f_bfree, card.full ? 0 : card.freeBlocks);
    space->f_bavail = space->f_bfree;
    return 0;
}

template <typename RealCall, typename Space>
int SpaceOfPath(RealCall& real, const char* path, Space* space) {
    return OnPath("statfs", false, path, [&](const char* target, Node node) {
        return node.family == Family::Card ? CardSpace(space) : real(target, space);
    });
}

template <typename RealCall, typename Space>
int SpaceOfFile(RealCall& real, int file, Space* space) {
    return OnFile("statfs", file,
                  [&](Node node) { return node.family == Family::Card ? CardSpace(space) : real(file, space); });
}

}  // namespace

extern "C" {

int stat(const char* path, struct stat* status) noexcept { return StatPath(Real::stat, path, status); }
int stat64(const char* path, struct stat64* status) noexcept { return StatPath(Real::stat64, path, status); }
int lstat(const char* path, struct stat* status) noexcept { return StatPath(Real::lstat, path, status); }
int lstat64(const char* path, struct stat64* status) noexcept { return StatPath(Real::lstat64, path, status); }
int fstat(int file, struct stat* status) noexcept { return StatFile(Real::fstat, file, status); }
int fstat64(int file, struct stat64* status) noexcept { return StatFile(Real::fstat64, file, status); }

// Older names of the same calls: the thread sanitizer's own fstat uses them.
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
}
