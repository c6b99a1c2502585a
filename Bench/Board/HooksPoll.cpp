// Waiting for descriptors: the board for pin edges, the kernel for everything else. Timeouts are simulated time.
#include <poll.h>
#include <sys/select.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr std::int64_t Forever = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t NanoSecondsPerMilliSecond = 1000000;
constexpr std::int64_t MaxWait = 100000000;  // real: a change of the speed is noticed this late
constexpr short AlwaysReady = POLLIN | POLLOUT | POLLRDNORM | POLLWRNORM;

// The events that the kernel reports for a device file now.
short EventsOf(const BoardState& state, const BoardFile& file) {
    if (!NodeAlive(state, file.node)) {
        return POLLERR | POLLPRI;
    }
    const bool edge = IsGpioValue(file.node) && EdgeCount(state, LineOf(file.node)) != file.open->seenEdges.load();
    return static_cast<short>(AlwaysReady | (edge ? POLLERR | POLLPRI : 0));
}

// Sets the events of the device files. Returns how many are ready.
int PollDevices(const BoardState& state, pollfd* files, nfds_t count) {
    int ready = 0;
    for (nfds_t i = 0; i < count; ++i) {
        const BoardFile file = FindFile(files[i].fd);
        if (IsDevice(file.node)) {
            files[i].revents = static_cast<short>(EventsOf(state, file) & (files[i].events | POLLERR));
            ready += files[i].revents != 0 ? 1 : 0;
        }
    }
    return ready;
}

// Simulated nanoseconds until the instrument or a fault may change a pin.
std::int64_t UntilChange(const BoardState& state, std::int64_t now) {
    std::int64_t wait = Forever;
    const double flag = SecondsUntilFlagChange(state.instrument, EffectiveSettings(state), InputsOf(state));
    if (std::isfinite(flag) && flag < 1e6) {
        wait = static_cast<std::int64_t>(std::ceil(flag * 1e9)) + 1;
    }
    const std::int64_t fault = NextFaultAt(state);
    return fault == Forever ? wait : std::min(wait, std::max<std::int64_t>(fault - now, 1));
}

bool IsDeviceFile(const pollfd& file) { return IsDevice(FindFile(file.fd).node); }

// Polls the files that are not the board's without waiting. Returns how many are ready, or -1.
int PollOthers(pollfd* files, nfds_t count) {
    int ready = 0;
    for (nfds_t i = 0; i < count; ++i) {
        if (!IsDeviceFile(files[i])) {
            const int result = Real::poll(&files[i], nfds_t{1}, 0);
            if (result < 0) {
                return -1;
            }
            ready += result;
        }
    }
    return ready;
}

int WaitForDevices(BoardState& state, pollfd* files, nfds_t count, std::int64_t end, bool anyOther) {
    for (;;) {
        std::uint32_t seen = 0;
        std::int64_t wait = 0;
        int ready = 0;
        {
            const BoardLock lock(state);
            seen = state.changes.load();
            ready = PollDevices(state, files, count);
            const std::int64_t now = MonotonicNow(state.clock);
            wait = std::min(UntilChange(state, now), end == Forever ? Forever : end - now);
        }
        const int others = anyOther ? PollOthers(files, count) : 0;
        if (others < 0) {
            return -1;
        }
        if (ready + others > 0 || wait <= 0) {
            return ready + others;
        }
        const std::int64_t real = wait == Forever ? MaxWait : std::min(ToReal(state.clock, wait), MaxWait);
        const int error = FutexWait(state.changes, seen, anyOther ? std::min(real, NanoSecondsPerMilliSecond) : real);
        if (error == EINTR) {
            return Answer(EINTR);
        }
    }
}

// Waits in the kernel, in pieces, so that a change of the speed takes effect.
int WaitForOthers(BoardState& state, pollfd* files, nfds_t count, std::int64_t end, const sigset_t* mask) {
    for (;;) {
        const std::int64_t left = end == Forever ? Forever : std::max<std::int64_t>(end - MonotonicNow(state.clock), 0);
        const std::int64_t real = left == Forever ? MaxWait : std::min(ToReal(state.clock, left), MaxWait);
        const timespec wait = TimespecOf(real);
        const int result = Real::ppoll(files, count, &wait, mask);
        if (result != 0 || left == 0) {
            return result;
        }
    }
}

int PollUntil(BoardState& state, pollfd* files, nfds_t count, std::int64_t end, const sigset_t* mask) {
    const std::ptrdiff_t devices = std::count_if(files, files + count, IsDeviceFile);
    if (devices == 0) {
        return WaitForOthers(state, files, count, end, mask);
    }
    const bool anyOther = static_cast<nfds_t>(devices) < count;
    return CountOrFail(state, "poll") != 0 ? -1 : WaitForDevices(state, files, count, end, anyOther);
}

}  // namespace

extern "C" {

int poll(pollfd* files, nfds_t count, int milliseconds) {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::poll(files, count, milliseconds);
    }
    const std::int64_t end =
        milliseconds < 0 ? Forever : MonotonicNow(state->clock) + milliseconds * NanoSecondsPerMilliSecond;
    return PollUntil(*state, files, count, end, nullptr);
}

int __poll_chk(pollfd* files, nfds_t count, int milliseconds, size_t space) {
    if (space / sizeof(pollfd) < count) {
        std::abort();
    }
    return poll(files, count, milliseconds);
}

int ppoll(pollfd* files, nfds_t count, const timespec* timeout, const sigset_t* mask) {
    BoardState* state = AttachedState();
    if (state == nullptr || (timeout != nullptr && (timeout->tv_sec < 0 || timeout->tv_nsec < 0 ||
                                                    timeout->tv_nsec >= NanoSecondsPerSecond))) {
        return Real::ppoll(files, count, timeout, mask);
    }
    const std::int64_t end = timeout == nullptr ? Forever : MonotonicNow(state->clock) + NanoSecondsOf(*timeout);
    return PollUntil(*state, files, count, end, mask);
}

int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* timeout) {
    BoardState* state = AttachedState();
    if (state == nullptr || timeout == nullptr || timeout->tv_sec < 0 || timeout->tv_usec < 0) {
        return Real::select(count, readable, writable, exceptional, timeout);
    }
    const std::int64_t simulated = timeout->tv_sec * NanoSecondsPerSecond + timeout->tv_usec * 1000;
    const std::int64_t end = MonotonicNow(state->clock) + simulated;
    const std::int64_t real = ToReal(state->clock, simulated);
    timeval wait{static_cast<time_t>(real / NanoSecondsPerSecond),
                 static_cast<suseconds_t>((real % NanoSecondsPerSecond + 999) / 1000)};
    const int result = Real::select(count, readable, writable, exceptional, &wait);
    const std::int64_t left = std::max<std::int64_t>(end - MonotonicNow(state->clock), 0);
    timeout->tv_sec = static_cast<time_t>(left / NanoSecondsPerSecond);
    timeout->tv_usec = static_cast<suseconds_t>(left % NanoSecondsPerSecond / 1000);
    return result;
}
}
