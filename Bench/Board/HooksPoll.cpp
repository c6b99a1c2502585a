// Waiting for descriptors: pin edges by the board, everything else by the kernel; the time-outs are simulated time.
#include <poll.h>
#include <sys/select.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr std::int64_t Forever = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t NanoSecondsPerMilliSecond = 1000000;
constexpr std::int64_t LongestWait = 100000000;  // real: so soon a change of the speed is seen everywhere
constexpr short AlwaysReady = POLLIN | POLLOUT | POLLRDNORM | POLLWRNORM;

// What the kernel says of a device file now.
short EventsOf(BoardState& state, int file, Node node) {
    if (!NodeAlive(state, node)) {
        return POLLERR | POLLPRI;
    }
    const bool edge = IsGpioValue(node) && EdgeCount(state, node.first, node.second) != SeenEdges(file);
    return static_cast<short>(AlwaysReady | (edge ? POLLERR | POLLPRI : 0));
}

// Fills in the device files; how many are ready.
int PollDevices(BoardState& state, pollfd* files, nfds_t count) {
    int ready = 0;
    for (nfds_t i = 0; i < count; ++i) {
        const Node node = FileNode(files[i].fd);
        if (IsDevice(node)) {
            files[i].revents = static_cast<short>(EventsOf(state, files[i].fd, node) & (files[i].events | POLLERR));
            ready += files[i].revents != 0 ? 1 : 0;
        }
    }
    return ready;
}

// Simulated nanoseconds until the instrument by itself may change a pin.
std::int64_t UntilChange(const BoardState& state, std::int64_t now) {
    std::int64_t wait = Forever;
    const double flag = SecondsUntilFlagChange(state.instrument, EffectiveSettings(state), InputsOf(state));
    if (std::isfinite(flag) && flag < 1e6) {
        wait = static_cast<std::int64_t>(std::ceil(flag * 1e9)) + 1;
    }
    const std::int64_t fault = NextFaultAt(state);
    return fault == Forever ? wait : std::min(wait, std::max<std::int64_t>(fault - now, 1));
}

bool AnyDevice(const pollfd* files, nfds_t count, bool& anyOther) {
    bool device = false;
    anyOther = false;
    for (nfds_t i = 0; i < count; ++i) {
        const bool isDevice = IsDevice(FileNode(files[i].fd));
        device = device || isDevice;
        anyOther = anyOther || !isDevice;
    }
    return device;
}

// Looks at the files that are not the board's without waiting. Their number, or -1.
int PollOthers(pollfd* files, nfds_t count) {
    int ready = 0;
    for (nfds_t i = 0; i < count; ++i) {
        if (!IsDevice(FileNode(files[i].fd))) {
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
        const std::int64_t real = wait == Forever ? LongestWait : std::min(ToReal(state.clock, wait), LongestWait);
        const int error = FutexWait(state.changes, seen, anyOther ? std::min(real, NanoSecondsPerMilliSecond) : real);
        if (error == EINTR) {
            errno = EINTR;
            return -1;
        }
    }
}

// Waits by the kernel in pieces, so that a change of the speed is followed.
int WaitForOthers(BoardState& state, pollfd* files, nfds_t count, std::int64_t end, const sigset_t* mask) {
    for (;;) {
        const std::int64_t left = end == Forever ? Forever : std::max<std::int64_t>(end - MonotonicNow(state.clock), 0);
        const std::int64_t real = left == Forever ? LongestWait : std::min(ToReal(state.clock, left), LongestWait);
        const timespec wait{static_cast<time_t>(real / NanoSecondsPerSecond),
                            static_cast<long>(real % NanoSecondsPerSecond)};
        const int result = Real::ppoll(files, count, &wait, mask);
        if (result != 0 || left == 0) {
            return result;
        }
    }
}

int PollUntil(BoardState& state, pollfd* files, nfds_t count, std::int64_t end, const sigset_t* mask) {
    bool anyOther = false;
    if (!AnyDevice(files, count, anyOther)) {
        return WaitForOthers(state, files, count, end, mask);
    }
    return CountOrFail(state, Call::Poll) != 0 ? -1 : WaitForDevices(state, files, count, end, anyOther);
}

}  // namespace

// The names are those of libc.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
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
    const std::int64_t end =
        timeout == nullptr ? Forever
                           : MonotonicNow(state->clock) + timeout->tv_sec * NanoSecondsPerSecond + timeout->tv_nsec;
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
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
