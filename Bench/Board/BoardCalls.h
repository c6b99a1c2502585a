// Calls of libc counted by kind, and the one that must fail.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace Bench {

struct BoardState;

// The kinds as the console shows them. "allocation" is last: a sanitizer build does not count it.
inline constexpr std::string_view CallNames[] = {
    "open",           "close",      "read",          "write",      "seek",     "sync",          "ioctl",
    "poll",           "mmap",       "fopen",         "fclose",     "opendir",  "stat",          "statfs",
    "mount",          "umount",     "setmntent",     "access",     "mkdir",    "remove",        "rename",
    "truncate",       "chmod",      "clock_gettime", "fork",       "system",   "socket",        "connect",
    "send",           "recv",       "setsockopt",    "getsockopt", "shutdown", "gethostbyname", "gethostbyaddr",
    "pthread_create", "allocation",
};

// A kind of call by its name. A name that is not in the table does not compile.
struct Call {
    consteval Call(const char* name) {
        while (CallNames[row] != name) {
            ++row;
        }
    }
    std::size_t row = 0;
};

// Atomic for the hooks of the clock and of memory, which must not lock.
struct CallState {
    std::atomic<std::uint64_t> count{0};
    std::atomic<std::int32_t> failIn{0};  // 1: the next call fails; 0 or less: none
    std::atomic<std::int32_t> error{0};
};

// Counts the call. Returns 0, or the error number with which it must fail.
int CountCall(BoardState& state, Call call);

}  // namespace Bench
