// The card in its slot, and the files of the bench folder that show devices and card to directories, stat and access.
// Call under BoardLock.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "Bench/Board/BoardDevices.h"

namespace Bench {

struct CardState {
    bool inserted = true;
    bool mounted = false;
    bool full = false;
    bool writeProtected = false;
    std::int32_t slowMilliseconds = 0;
    std::uint64_t totalBlocks = 1953125;  // 8 GB
    std::uint64_t freeBlocks = 1900000;
    std::uint32_t blockSize = 4096;
    char mountPoint[PathLength] = {};
};

void SetCardInserted(BoardState& state, bool inserted);
// 0 or an error number. `realTarget` is the mount point's path on this machine.
int MountCard(BoardState& state, const char* source, const char* target, const char* realTarget, const char* type,
              unsigned long flags);
int UnmountCard(BoardState& state, const char* target, bool inUse);
void WriteMountTable(const BoardState& state);
int CardAccessError(const BoardState& state, bool writing);  // error number of an access to a file on the card now

// Creates or removes a file, or a folder with its files, at that path of the board.
void SetShadowFile(const BoardState& state, const char* path, bool exists);
void SetShadowFolder(const BoardState& state, const char* path, std::initializer_list<const char*> files, bool exists);

}  // namespace Bench
