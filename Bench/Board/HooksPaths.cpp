// Calls on paths: access, changes, folders and mounts.
#include <dirent.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include "Bench/Board/OnPath.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

template <typename RealCall, typename... Arguments>
int Change(RealCall& real, Call call, const char* path, Arguments... arguments) {
    return OnPath(call, true, path, [&](const char* target, Node) { return real(target, arguments...); });
}

int Unmount(BoardState& state, const char* target) {
    if (CountOrFail(state, "umount") != 0) {
        return -1;
    }
    const bool inUse = CardFilesOpen();
    return Answer(UnmountCard(*BoardLock(state), target, inUse));
}

}  // namespace

extern "C" {

int access(const char* path, int mode) noexcept {
    return OnPath("access", false, path, [mode](const char* target, Node) { return Real::access(target, mode); });
}

int mkdir(const char* path, mode_t mode) noexcept { return Change(Real::mkdir, "mkdir", path, mode); }
int rmdir(const char* path) noexcept { return Change(Real::rmdir, "remove", path); }
int remove(const char* path) noexcept { return Change(Real::remove, "remove", path); }
int unlink(const char* path) noexcept { return Change(Real::unlink, "remove", path); }
int chmod(const char* path, mode_t mode) noexcept { return Change(Real::chmod, "chmod", path, mode); }
int truncate(const char* path, off_t length) noexcept { return Change(Real::truncate, "truncate", path, length); }
int truncate64(const char* path, off64_t length) noexcept { return Change(Real::truncate64, "truncate", path, length); }

int rename(const char* from, const char* to) noexcept {
    BoardState* state = AttachedState();
    Target target;
    if (state != nullptr) {
        Resolve(*state, to, target);
    }
    if (target.inside && target.error != 0) {
        return Answer(target.error);
    }
    return Change(Real::rename, "rename", from, target.inside ? target.path : to);
}

DIR* opendir(const char* path) {
    return OnPath("opendir", false, path, [](const char* target, Node) { return Real::opendir(target); });
}

// A program on the board never mounts anything on the machine.
int mount(const char* source, const char* target, const char* type, unsigned long flags, const void* data) noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::mount(source, target, type, flags, data);
    }
    if (CountOrFail(*state, "mount") != 0) {
        return -1;
    }
    Target folder;
    Resolve(*state, target, folder);
    const char* realTarget = folder.inside ? folder.path : target;
    return Answer(MountCard(*BoardLock(*state), source, target, realTarget, type, flags));
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
