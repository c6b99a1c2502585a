// Calls counted by kind, and the one that must fail.
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr std::int32_t KillsProcess = -1;  // in place of an error

constexpr const char* Kinds[] = {
    "open",           "close",      "read",          "write",      "seek",     "sync",          "ioctl",
    "poll",           "mmap",       "fopen",         "fclose",     "opendir",  "stat",          "statfs",
    "mount",          "umount",     "setmntent",     "access",     "mkdir",    "remove",        "rename",
    "truncate",       "chmod",      "clock_gettime", "fork",       "system",   "socket",        "connect",
    "send",           "recv",       "setsockopt",    "getsockopt", "shutdown", "gethostbyname", "gethostbyaddr",
    "pthread_create", "allocation",
};
static_assert(std::size(Kinds) == static_cast<std::size_t>(Call::Count));

// Beside a sanitizer nobody counts allocations, so there is no such kind.
#ifdef BENCH_ALLOCATIONS
constexpr std::size_t Known = std::size(Kinds);
#else
constexpr std::size_t Known = std::size(Kinds) - 1;
#endif

CallState* FindCall(BoardState& state, const std::string& kind) {
    const auto* row = std::find(Kinds, Kinds + Known, kind);
    return row == Kinds + Known ? nullptr : &state.calls[row - std::begin(Kinds)];
}

}  // namespace

int CountCall(BoardState& state, Call call) {
    CallState& counter = state.calls[static_cast<std::size_t>(call)];
    ++counter.count;
    if (counter.failIn <= 0) {
        return 0;
    }
    if (--counter.failIn != 0) {
        return 0;
    }
    if (counter.error == KillsProcess) {
        // Let go first: not every kernel hands on a lock whose holder has died; qemu, for one, does not.
        pthread_mutex_unlock(&state.mutex);
        kill(getpid(), SIGKILL);
    }
    return counter.error;
}

const std::vector<std::string>& Board::CallKinds() {
    static const std::vector<std::string> kinds(Kinds, Kinds + Known);
    return kinds;
}

bool Board::FailCall(const std::string& kind, int n, int error) {
    const BoardLock lock(*m_state);
    CallState* call = FindCall(*m_state, kind);
    if (call == nullptr || n < 1) {
        return false;
    }
    call->error = error;
    call->failIn = n;
    return true;
}

bool Board::KillAtCall(const std::string& kind, int n) { return FailCall(kind, n, KillsProcess); }

std::uint64_t Board::CallCount(const std::string& kind) const {
    const BoardLock lock(*m_state);
    const CallState* call = FindCall(*m_state, kind);
    return call == nullptr ? 0 : call->count.load();
}

}  // namespace Bench
