// Which board the hooks of this process serve, and what they know of its open files. No locks: a fork may come at any
// time.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

BoardState* AttachedState();  // null: every hook passes its call on

constexpr std::size_t MaximalPath = 4096;

// Where a path of the program leads.
struct Target {
    bool inside = false;  // false: no business of the board's, `path` is unset
    Node node;            // a device file; Regular or Card for an ordinary file of the bench folder
    int error = 0;        // the board refuses the path
    char path[MaximalPath] = {};
};

// In Node::file of an ordinary file that stands for a block device.
constexpr std::uint8_t BlockDevice = 1;

// Looks at the board's state, so takes its lock.
void Resolve(BoardState& state, const char* path, Target& target);

// ---- Open files by descriptor.
void RememberFile(int file, Node node, int access);  // O_RDONLY, O_WRONLY or O_RDWR
int FileAccess(int file);
void ForgetFile(int file);
void CopyFile(int from, int to);
Node FileNode(int file);  // family None where the file is no business of the board's
std::uint32_t SeenEdges(int file);
void SetSeenEdges(int file, std::uint32_t count);
bool CardFilesOpen();

// ---- What a socket of the program has met.
enum class Cut { Whole, Pending, Told };  // Pending: the program's next call fails
Cut SocketCut(int file);
void SetSocketCut(int file, Cut cut);
std::uint64_t SocketReceived(int file);  // bytes since the connection
void AddSocketReceived(int file, std::uint64_t count);

// ---- What a program does with a file, for descriptors and streams alike: as the system call, errno set.
int OpenFile(BoardState& state, Call call, const char* path, int flags, mode_t mode, bool& passedOn);
ssize_t ReadFile(BoardState& state, int file, Node node, void* data, std::size_t size);
ssize_t WriteFile(BoardState& state, int file, Node node, const void* data, std::size_t size);
int CloseFile(int file);
// The same for a connected socket, by recv and send or by read and write.
ssize_t ReceiveBytes(BoardState& state, int file, Node node, Call call, void* data, std::size_t size, int flags);
ssize_t SendBytes(BoardState& state, int file, Call call, const void* data, std::size_t size, int flags);

// 0, or -1 with errno set, when the call must fail by request.
int CountOrFail(BoardState& state, Call call);
// Waits as a slow card does. Not under the lock.
void WaitForSlowCard(BoardState& state, Node node);

// Ends a forked child whose program or whose run of the board is gone, so that no run leaves processes behind.
void EndWithBoard(const BoardState& state);

// Simulated sleep. 0, or EINTR with what is left.
int SleepSimulated(BoardState& state, std::int64_t nanoSeconds, std::int64_t* left);

}  // namespace Bench
