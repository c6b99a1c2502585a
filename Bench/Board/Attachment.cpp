#include "Bench/Board/Attachment.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Bench/Board/Real.h"

namespace Bench {

namespace {

constexpr const char* FolderVariable = "VERNICOR_BENCH";

std::atomic<BoardState*> attached{nullptr};
// For as long as the process lives, exit handlers included. Nobody reads it, but a leak checker has to find it.
[[gnu::used]] Board* preloaded = nullptr;

// A preloaded program is on its board before its own first line runs.
[[gnu::constructor]] void Begin() {
    Real::FindAll();
    const char* folder = std::getenv(FolderVariable);
    if (folder == nullptr || *folder == '\0') {
        return;
    }
    std::string error;
    std::unique_ptr<Board> board = Board::Open(folder, error);
    if (board == nullptr) {
        std::fprintf(stderr, "board: %s: %s\n", FolderVariable, error.c_str());
        std::_Exit(127);
    }
    preloaded = board.release();
    AttachThisProcess(*preloaded);
}

// ---- Open files.
constexpr int MaximalFiles = 4096;

struct OpenFileState {
    std::atomic<std::uint32_t> node{0};
    std::atomic<std::uint32_t> seenEdges{0};
    std::atomic<int> access{0};  // O_RDONLY, O_WRONLY or O_RDWR
    std::atomic<Cut> cut{Cut::Whole};
    std::atomic<std::uint64_t> received{0};
};

OpenFileState openFiles[MaximalFiles];

std::uint32_t Pack(Node node) {
    return static_cast<std::uint32_t>(node.family) << 24U | std::uint32_t{node.file} << 16U |
           std::uint32_t{node.first} << 8U | node.second;
}

Node Unpack(std::uint32_t packed) {
    return {static_cast<Family>(packed >> 24U), static_cast<std::uint8_t>(packed >> 16U),
            static_cast<std::uint8_t>(packed >> 8U), static_cast<std::uint8_t>(packed)};
}

bool IsHeld(int file) { return file >= 0 && file < MaximalFiles; }

}  // namespace

BoardState* AttachedState() { return attached.load(std::memory_order_acquire); }

void AttachThisProcess(const Board& board) { attached.store(&board.State(), std::memory_order_release); }

void DetachThisProcess() {
    attached.store(nullptr, std::memory_order_release);
    for (OpenFileState& file : openFiles) {
        file.node.store(0, std::memory_order_relaxed);
    }
}

void RememberFile(int file, Node node, int access) {
    if (IsHeld(file)) {
        openFiles[file].access.store(access, std::memory_order_relaxed);
        openFiles[file].seenEdges.store(~0U, std::memory_order_relaxed);  // a new file has its event pending
        openFiles[file].cut.store(Cut::Whole, std::memory_order_relaxed);
        openFiles[file].received.store(0, std::memory_order_relaxed);
        openFiles[file].node.store(Pack(node), std::memory_order_release);
    }
}

void ForgetFile(int file) {
    if (IsHeld(file)) {
        openFiles[file].node.store(0, std::memory_order_release);
    }
}

void CopyFile(int from, int to) {
    if (IsHeld(to)) {
        openFiles[to].seenEdges.store(SeenEdges(from), std::memory_order_relaxed);
        openFiles[to].access.store(FileAccess(from), std::memory_order_relaxed);
        openFiles[to].node.store(Pack(FileNode(from)), std::memory_order_release);
    }
}

Node FileNode(int file) { return IsHeld(file) ? Unpack(openFiles[file].node.load(std::memory_order_acquire)) : Node{}; }

int FileAccess(int file) { return IsHeld(file) ? openFiles[file].access.load(std::memory_order_relaxed) : 0; }

std::uint32_t SeenEdges(int file) {
    return IsHeld(file) ? openFiles[file].seenEdges.load(std::memory_order_relaxed) : 0;
}

void SetSeenEdges(int file, std::uint32_t count) {
    if (IsHeld(file)) {
        openFiles[file].seenEdges.store(count, std::memory_order_relaxed);
    }
}

Cut SocketCut(int file) { return IsHeld(file) ? openFiles[file].cut.load() : Cut::Whole; }

void SetSocketCut(int file, Cut cut) {
    if (IsHeld(file)) {
        openFiles[file].cut.store(cut);
    }
}

std::uint64_t SocketReceived(int file) { return IsHeld(file) ? openFiles[file].received.load() : 0; }

void AddSocketReceived(int file, std::uint64_t count) {
    if (IsHeld(file)) {
        openFiles[file].received.fetch_add(count);
    }
}

bool CardFilesOpen() {
    for (const OpenFileState& file : openFiles) {
        if (Unpack(file.node.load(std::memory_order_acquire)).family == Family::Card) {
            return true;
        }
    }
    return false;
}

}  // namespace Bench
