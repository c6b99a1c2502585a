// The board that this process's hooks serve, and what they know about its open files. Nothing here locks, because a
// fork may come at any time.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "Bench/Board/BoardState.h"

namespace Bench {

BoardState* AttachedState();  // null: every hook passes its call on

constexpr std::size_t MaxPath = 4096;

// Where a path of the program leads.
struct Target {
    bool inside = false;  // false: the path is not the board's, and `path` is unset
    Node node;            // a device file; Regular or Card for an ordinary file of the bench folder
    int error = 0;        // the board refuses the path
    char path[MaxPath] = {};
};

// In Node::file of an ordinary file that represents a block device.
constexpr std::uint8_t BlockDevice = 1;

// Reads the board's state, so it takes the lock.
void Resolve(BoardState& state, const char* path, Target& target);

// ---- Open files by descriptor.
enum class Cut { Whole, Pending, Reported };  // Pending: the program's next call on the socket fails

struct OpenFile {
    std::atomic<Node> node{Node{}};  // family None: not the board's
    std::atomic<std::uint32_t> seenEdges{0};
    std::atomic<int> access{0};  // O_RDONLY, O_WRONLY or O_RDWR
    std::atomic<Cut> cut{Cut::Whole};
    std::atomic<std::uint64_t> received{0};    // bytes since the connection
    std::atomic<std::uint32_t> connection{0};  // of its wire; 0: none
};

// The board and its file of a descriptor. Converts to false if the file is not the board's; the call is then passed on.
struct BoardFile {
    BoardState* state = nullptr;
    int file = -1;
    Node node;
    OpenFile* open = nullptr;

    explicit operator bool() const { return state != nullptr; }
};

BoardFile FindFile(int file);
BoardFile FindSocket(int file);
void RememberFile(int file, Node node, int access);
void ForgetFile(int file);
void CopyFile(int from, int to);
bool CardFilesOpen();

// ---- Operations on files, for descriptors and streams alike. They return as the system call does and set errno.
int OpenPath(BoardState& state, Call call, const char* path, int flags, mode_t mode, bool& passedOn);
ssize_t ReadFile(const BoardFile& file, void* data, std::size_t size);
ssize_t WriteFile(const BoardFile& file, const void* data, std::size_t size);
int CloseFile(int file);
// The same for a connected socket, by recv and send or by read and write.
ssize_t ReceiveBytes(const BoardFile& file, Call call, void* data, std::size_t size, int flags);
ssize_t SendBytes(const BoardFile& file, Call call, const void* data, std::size_t size, int flags);

// Turns an error number into what a system call returns: `result` for 0, else `failure` with errno set.
template <typename Result = int>
Result Answer(int error, Result result = 0, Result failure = static_cast<Result>(-1)) {
    errno = error == 0 ? errno : error;
    return error == 0 ? result : failure;
}

// Counts the call. 0, or -1 with errno set if it must fail by request.
int CountOrFail(BoardState& state, Call call);
// The same, and fails for a file on a card that refuses the access.
int CountOrFail(const BoardFile& file, Call call, bool writing);
// Waits as a slow card does. Not under the lock.
void WaitForSlowCard(const BoardFile& file);

// Ends a forked child whose program or whose run of the board is gone, so that no run leaves processes behind.
void EndWithBoard(const BoardState& state);

// Simulated sleep. 0, or EINTR with the time left.
int SleepSimulated(BoardState& state, std::int64_t nanoSeconds, std::int64_t* left);

}  // namespace Bench
