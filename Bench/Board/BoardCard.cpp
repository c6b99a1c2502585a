#include "Bench/Board/BoardCard.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Bench/Board/BoardState.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

constexpr const char* DiskPath = "/dev/mmcblk0";
constexpr const char* PartitionPath = "/dev/mmcblk0p1";
constexpr std::size_t FullPathLength = 2 * PathLength;

void FullPath(const BoardState& state, const char* path, char (&full)[FullPathLength]) {
    std::snprintf(full, sizeof(full), "%s%s", state.folder, path);
}

// Without a trailing slash, as the mount table shows it.
void CopyMountPoint(const char* target, char (&mountPoint)[PathLength]) {
    std::snprintf(mountPoint, sizeof(mountPoint), "%s", target);
    std::size_t length = std::strlen(mountPoint);
    while (length > 1 && mountPoint[length - 1] == '/') {
        mountPoint[--length] = '\0';
    }
}

int MountError(const BoardState& state, const char* source, const char* realTarget, const char* type,
               unsigned long flags) {
    if (std::strcmp(source, PartitionPath) != 0 || !state.card.inserted) {
        return ENOENT;
    }
    if (std::strcmp(type, "vfat") != 0) {
        return ENODEV;
    }
    struct stat64 status {};
    if (Real::stat64(realTarget, &status) != 0) {
        return ENOENT;
    }
    if (!S_ISDIR(status.st_mode)) {
        return ENOTDIR;
    }
    if (state.card.mounted) {
        return EBUSY;
    }
    return state.card.writeProtected && (flags & MS_RDONLY) == 0 ? EROFS : 0;
}

}  // namespace

void SetCardInserted(BoardState& state, bool inserted) {
    {
        const EdgeWatch watch(state, CardSwitch);
        state.card.inserted = inserted;
    }
    SetShadowFile(state, DiskPath, inserted);
    SetShadowFile(state, PartitionPath, inserted);
    Changed(state);
}

void WriteMountTable(const BoardState& state) {
    char path[FullPathLength];
    char text[FullPathLength];
    FullPath(state, "/etc/mtab", path);
    Buffer table{text, sizeof(text)};
    Put(table, "rootfs / rootfs rw 0 0\nproc /proc proc rw,relatime 0 0\nsysfs /sys sysfs rw,relatime 0 0\n");
    if (state.card.mounted) {
        Put(table, "%s %s vfat rw,sync,relatime,fmask=0022,dmask=0022 0 0\n", PartitionPath, state.card.mountPoint);
    }
    const int file = Real::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file >= 0) {
        if (Real::write(file, text, table.used) < 0) {
            std::perror("board: can't write the mount table");
        }
        Real::close(file);
    }
}

int MountCard(BoardState& state, const char* source, const char* target, const char* realTarget, const char* type,
              unsigned long flags) {
    const int error = MountError(state, source, realTarget, type, flags);
    if (error == 0) {
        CopyMountPoint(target, state.card.mountPoint);
        state.card.mounted = true;
        WriteMountTable(state);
    }
    Trace(state, error, "mount %s %s %s %lu", source, target, type, flags);
    return error;
}

int UnmountCard(BoardState& state, const char* target, bool inUse) {
    char mountPoint[PathLength];
    CopyMountPoint(target, mountPoint);
    int error = 0;
    if (!state.card.mounted || std::strcmp(mountPoint, state.card.mountPoint) != 0) {
        error = EINVAL;
    } else if (inUse) {
        error = EBUSY;
    } else {
        state.card.mounted = false;
        state.card.mountPoint[0] = '\0';
        WriteMountTable(state);
    }
    Trace(state, error, "umount %s", target);
    return error;
}

int CardAccessError(const BoardState& state, bool writing) {
    if (!state.card.inserted) {
        return EIO;
    }
    if (writing && state.card.writeProtected) {
        return EROFS;
    }
    return writing && state.card.full ? ENOSPC : 0;
}

void SetShadowFile(const BoardState& state, const char* path, bool exists) {
    char full[FullPathLength];
    FullPath(state, path, full);
    if (!exists) {
        Real::unlink(full);
        return;
    }
    const int file = Real::open(full, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file >= 0) {
        Real::close(file);
    }
}

void SetShadowFolder(const BoardState& state, const char* path, std::initializer_list<const char*> files, bool exists) {
    char full[FullPathLength];
    FullPath(state, path, full);
    if (exists) {
        Real::mkdir(full, 0755);
    }
    for (const char* file : files) {
        char name[PathLength];
        std::snprintf(name, sizeof(name), "%s/%s", path, file);
        SetShadowFile(state, name, exists);
    }
    if (!exists) {
        Real::rmdir(full);
    }
}

CardView Board::Card() const {
    const BoardLock state(*m_state);
    const CardState& card = state->card;
    return {.inserted = card.inserted,
            .mounted = card.mounted,
            .mountPoint = card.mountPoint,
            .full = card.full,
            .writeProtected = card.writeProtected,
            .slowMilliseconds = card.slowMilliseconds,
            .totalBlocks = card.totalBlocks,
            .freeBlocks = card.freeBlocks,
            .blockSize = card.blockSize};
}

void Board::InsertCard() { SetCardInserted(*BoardLock(*m_state), true); }
void Board::PullCard() { SetCardInserted(*BoardLock(*m_state), false); }
void Board::SetCardFull(bool full) { BoardLock(*m_state)->card.full = full; }
void Board::SetCardWriteProtected(bool writeProtected) { BoardLock(*m_state)->card.writeProtected = writeProtected; }

void Board::SetCardSlow(int milliseconds) {
    BoardLock(*m_state)->card.slowMilliseconds = milliseconds > 0 ? milliseconds : 0;
}

void Board::SetCardSpace(std::uint64_t totalBlocks, std::uint64_t freeBlocks, std::uint32_t blockSize) {
    const BoardLock state(*m_state);
    state->card.totalBlocks = totalBlocks;
    state->card.freeBlocks = freeBlocks;
    state->card.blockSize = blockSize;
}

}  // namespace Bench
