// The card in its slot: what mount, umount and its files answer, and the mount table.
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

int MountError(const BoardState& state, const char* source, const char* resolvedTarget, const char* type,
               unsigned long flags) {
    if (std::strcmp(source, PartitionPath) != 0 || !CardPresent(state)) {
        return ENOENT;
    }
    if (std::strcmp(type, "vfat") != 0) {
        return ENODEV;
    }
    struct stat64 status {};
    if (Real::stat64(resolvedTarget, &status) != 0) {
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

bool CardPresent(const BoardState& state) { return state.card.inserted; }

void SetCardInserted(BoardState& state, bool inserted) {
    constexpr int SwitchBank = 3;
    constexpr int SwitchPin = 9;
    const bool before = PinLevel(state, SwitchBank, SwitchPin);
    state.card.inserted = inserted;
    const bool after = PinLevel(state, SwitchBank, SwitchPin);
    if (before != after) {
        NoteEdge(state.pins[SwitchBank][SwitchPin], after);
    }
    if (inserted) {
        MakeShadowFile(state, DiskPath);
        MakeShadowFile(state, PartitionPath);
    } else {
        RemoveShadowFile(state, PartitionPath);
        RemoveShadowFile(state, DiskPath);
    }
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

int MountCard(BoardState& state, const char* source, const char* target, const char* resolvedTarget, const char* type,
              unsigned long flags) {
    const int error = MountError(state, source, resolvedTarget, type, flags);
    if (error == 0) {
        CopyMountPoint(target, state.card.mountPoint);
        state.card.mounted = true;
        WriteMountTable(state);
    }
    TraceAct(state, "mount %s %s %s %lu%s%s", source, target, type, flags, error == 0 ? "" : " !",
             error == 0 ? "" : ErrorName(error));
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
    TraceAct(state, "umount %s%s%s", target, error == 0 ? "" : " !", error == 0 ? "" : ErrorName(error));
    return error;
}

int CardAccessError(const BoardState& state, bool writing) {
    if (!CardPresent(state)) {
        return EIO;
    }
    if (writing && state.card.writeProtected) {
        return EROFS;
    }
    return writing && state.card.full ? ENOSPC : 0;
}

void MakeShadowFile(const BoardState& state, const char* path) {
    char full[FullPathLength];
    FullPath(state, path, full);
    const int file = Real::open(full, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file >= 0) {
        Real::close(file);
    }
}

void RemoveShadowFile(const BoardState& state, const char* path) {
    char full[FullPathLength];
    FullPath(state, path, full);
    Real::unlink(full);
}

void MakeShadowDirectory(const BoardState& state, const char* path, std::initializer_list<const char*> files) {
    char full[FullPathLength];
    FullPath(state, path, full);
    Real::mkdir(full, 0755);
    for (const char* file : files) {
        char name[PathLength];
        std::snprintf(name, sizeof(name), "%s/%s", path, file);
        MakeShadowFile(state, name);
    }
}

void RemoveShadowDirectory(const BoardState& state, const char* path, std::initializer_list<const char*> files) {
    for (const char* file : files) {
        char name[PathLength];
        std::snprintf(name, sizeof(name), "%s/%s", path, file);
        RemoveShadowFile(state, name);
    }
    char full[FullPathLength];
    FullPath(state, path, full);
    Real::rmdir(full);
}

CardView Board::Card() const {
    const BoardLock lock(*m_state);
    const CardState& card = m_state->card;
    CardView view;
    view.inserted = card.inserted;
    view.mounted = card.mounted;
    view.mountPoint = card.mountPoint;
    view.full = card.full;
    view.writeProtected = card.writeProtected;
    view.slowMilliseconds = card.slowMilliseconds;
    view.totalBlocks = card.totalBlocks;
    view.freeBlocks = card.freeBlocks;
    view.blockSize = card.blockSize;
    return view;
}

void Board::InsertCard() {
    const BoardLock lock(*m_state);
    SetCardInserted(*m_state, true);
}

void Board::PullCard() {
    const BoardLock lock(*m_state);
    SetCardInserted(*m_state, false);
}

void Board::SetCardFull(bool full) {
    const BoardLock lock(*m_state);
    m_state->card.full = full;
}

void Board::SetCardWriteProtected(bool writeProtected) {
    const BoardLock lock(*m_state);
    m_state->card.writeProtected = writeProtected;
}

void Board::SetCardSlow(int milliseconds) {
    const BoardLock lock(*m_state);
    m_state->card.slowMilliseconds = std::max(milliseconds, 0);
}

void Board::SetCardSpace(std::uint64_t totalBlocks, std::uint64_t freeBlocks, std::uint32_t blockSize) {
    const BoardLock lock(*m_state);
    m_state->card.totalBlocks = totalBlocks;
    m_state->card.freeBlocks = freeBlocks;
    m_state->card.blockSize = blockSize;
}

}  // namespace Bench
