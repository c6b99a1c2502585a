#include "Bench/Board/Attachment.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Bench/Board/Real.h"

namespace Bench {

namespace {

constexpr const char* FolderVariable = "VERNICOR_BENCH";
constexpr int MaxFiles = 4096;

std::atomic<BoardState*> attached{nullptr};
OpenFile openFiles[MaxFiles];
// Lives as long as the process, exit handlers included. Only a leak checker reads it.
[[gnu::used]] Board* preloaded = nullptr;

// Attaches a preloaded program to its board before the program's first line runs.
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

OpenFile* SlotOf(int file) { return file >= 0 && file < MaxFiles ? &openFiles[file] : nullptr; }

}  // namespace

BoardState* AttachedState() { return attached.load(std::memory_order_acquire); }

void AttachThisProcess(const Board& board) { attached.store(&board.State(), std::memory_order_release); }

void DetachThisProcess() {
    attached.store(nullptr, std::memory_order_release);
    for (OpenFile& file : openFiles) {
        file.node.store(Node{}, std::memory_order_relaxed);
    }
}

BoardFile FindFile(int file) {
    BoardState* state = AttachedState();
    OpenFile* open = SlotOf(file);
    const Node node = state == nullptr || open == nullptr ? Node{} : open->node.load(std::memory_order_acquire);
    return node.family == Family::None ? BoardFile{} : BoardFile{state, file, node, open};
}

BoardFile FindSocket(int file) {
    const BoardFile found = FindFile(file);
    return found.node.family == Family::Socket ? found : BoardFile{};
}

void RememberFile(int file, Node node, int access) {
    if (OpenFile* open = SlotOf(file); open != nullptr) {
        open->access.store(access, std::memory_order_relaxed);
        open->cut.store(Cut::Whole, std::memory_order_relaxed);
        open->received.store(0, std::memory_order_relaxed);
        open->connection.store(0, std::memory_order_relaxed);
        open->node.store(node, std::memory_order_release);
    }
}

void ForgetFile(int file) {
    if (OpenFile* open = SlotOf(file); open != nullptr) {
        open->node.store(Node{}, std::memory_order_release);
    }
}

void CopyFile(int from, int to) {
    const OpenFile* source = SlotOf(from);
    OpenFile* copy = SlotOf(to);
    if (source != nullptr && copy != nullptr) {
        copy->seenEdges.store(source->seenEdges.load(), std::memory_order_relaxed);
        copy->access.store(source->access.load(), std::memory_order_relaxed);
        copy->node.store(source->node.load(), std::memory_order_release);
    } else {
        ForgetFile(to);
    }
}

bool CardFilesOpen() {
    return std::any_of(std::begin(openFiles), std::end(openFiles), [](const OpenFile& file) {
        return file.node.load(std::memory_order_acquire).family == Family::Card;
    });
}

}  // namespace Bench
