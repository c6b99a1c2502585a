#include "Bench/Board/BoardCalls.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr std::int32_t KillsProcess = -1;  // in place of an error

// A sanitizer build does not count allocations, so the kind is unknown there.
#ifdef BENCH_ALLOCATIONS
constexpr std::size_t KnownKinds = std::size(CallNames);
#else
constexpr std::size_t KnownKinds = std::size(CallNames) - 1;
#endif

CallState* FindCall(BoardState& state, const std::string& kind) {
    const auto* row = std::find(CallNames, CallNames + KnownKinds, kind);
    return row == CallNames + KnownKinds ? nullptr : &state.calls[row - CallNames];
}

}  // namespace

int CountCall(BoardState& state, Call call) {
    CallState& counter = state.calls[call.row];
    ++counter.count;
    if (counter.failIn <= 0 || --counter.failIn != 0) {
        return 0;
    }
    if (counter.error == KillsProcess) {
        // Unlock first: not every kernel passes on a lock whose holder has died; qemu does not.
        pthread_mutex_unlock(&state.mutex);
        kill(getpid(), SIGKILL);
    }
    return counter.error;
}

const std::vector<std::string>& Board::CallKinds() {
    static const std::vector<std::string> kinds(CallNames, CallNames + KnownKinds);
    return kinds;
}

bool Board::FailCall(const std::string& kind, int n, int error) {
    const BoardLock state(*m_state);
    CallState* call = FindCall(*state, kind);
    if (call == nullptr || n < 1) {
        return false;
    }
    call->error = error;
    call->failIn = n;
    return true;
}

bool Board::KillAtCall(const std::string& kind, int n) { return FailCall(kind, n, KillsProcess); }

std::uint64_t Board::CallCount(const std::string& kind) const {
    const BoardLock state(*m_state);
    const CallState* call = FindCall(*state, kind);
    return call == nullptr ? 0 : call->count.load();
}

}  // namespace Bench
