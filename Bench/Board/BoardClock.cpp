#include "Bench/Board/BoardClock.h"

#include <linux/futex.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "Bench/Board/Real.h"

namespace Bench {

namespace {

constexpr std::int64_t Million = 1000000;

struct ClockReading {
    std::int64_t realAnchor;
    std::int64_t boardAnchor;
    std::int64_t speed;
    std::int64_t wallOffset;
    std::int64_t jumpAt;
    std::int64_t jumpBy;
};

ClockReading ReadClock(const ClockState& clock) {
    for (;;) {
        const std::uint32_t before = clock.sequence.load(std::memory_order_acquire);
        const ClockReading reading{
            clock.realAnchor.load(std::memory_order_acquire), clock.boardAnchor.load(std::memory_order_acquire),
            clock.speed.load(std::memory_order_acquire),      clock.wallOffset.load(std::memory_order_acquire),
            clock.jumpAt.load(std::memory_order_acquire),     clock.jumpBy.load(std::memory_order_acquire)};
        if ((before & 1U) == 0 && clock.sequence.load(std::memory_order_acquire) == before) {
            return reading;
        }
    }
}

std::int64_t Scale(std::int64_t real, std::int64_t speed) {
    return real / Million * speed + real % Million * speed / Million;
}

std::int64_t MonotonicOf(const ClockReading& reading) {
    return reading.boardAnchor + Scale(RealNanoSeconds() - reading.realAnchor, reading.speed);
}

std::int64_t SpeedMillionths(double speed) {
    return static_cast<std::int64_t>(std::clamp(speed, 0.1, 1000.0) * static_cast<double>(Million));
}

std::atomic<const TimeSource*> timeSource{nullptr};

class ClockChange {
public:
    explicit ClockChange(ClockState& clock) : m_clock(clock) { m_clock.sequence.fetch_add(1); }
    ~ClockChange() {
        m_clock.sequence.fetch_add(1);
        m_clock.changes.fetch_add(1);
        FutexWakeAll(m_clock.changes);
    }
    ClockChange(const ClockChange&) = delete;
    ClockChange& operator=(const ClockChange&) = delete;

private:
    ClockState& m_clock;
};

}  // namespace

std::int64_t RealNanoSeconds() {
    timespec now{};
    Real::clock_gettime(CLOCK_MONOTONIC, &now);
    return NanoSecondsOf(now);
}

std::int64_t MonotonicNow(const ClockState& clock) {
    return clock.exact.load(std::memory_order_relaxed) ? clock.exactNow.load(std::memory_order_relaxed)
                                                       : MonotonicOf(ReadClock(clock));
}

std::int64_t WallNow(const ClockState& clock) {
    const ClockReading reading = ReadClock(clock);
    const std::int64_t now = MonotonicNow(clock);
    return now + reading.wallOffset + (now >= reading.jumpAt ? reading.jumpBy : 0);
}

std::int64_t MonotonicAt(const ClockState& clock, std::int64_t wall) {
    const ClockReading reading = ReadClock(clock);
    const std::int64_t beforeJump = wall - reading.wallOffset;
    return beforeJump < reading.jumpAt ? beforeJump : std::max(reading.jumpAt, beforeJump - reading.jumpBy);
}

void SetTimeSource(const TimeSource* source) { timeSource.store(source); }

const TimeSource* Simulated() {
    const TimeSource* source = timeSource.load(std::memory_order_relaxed);
    return source != nullptr && source->runs() ? source : nullptr;
}

std::int64_t ToReal(const ClockState& clock, std::int64_t simulated) {
    const std::int64_t speed = clock.speed.load(std::memory_order_acquire);
    if (simulated <= 0) {
        return 0;
    }
    return simulated / speed * Million + (simulated % speed * Million + speed - 1) / speed;
}

void StartClock(ClockState& clock, double speed, std::int64_t startSeconds) {
    const ClockChange change(clock);
    clock.realAnchor.store(RealNanoSeconds());
    clock.boardAnchor.store(MonotonicAtStart);
    clock.speed.store(SpeedMillionths(speed));
    clock.held.store(false);
    clock.exact.store(false);
    clock.wallOffset.store(startSeconds * NanoSecondsPerSecond - MonotonicAtStart);
    clock.jumpAt.store(0);
    clock.jumpBy.store(0);
}

void SetClockSpeed(ClockState& clock, double speed) {
    const std::int64_t real = RealNanoSeconds();
    const ClockReading reading = ReadClock(clock);
    const ClockChange change(clock);
    clock.realAnchor.store(real);
    clock.boardAnchor.store(reading.boardAnchor + Scale(real - reading.realAnchor, reading.speed));
    clock.speed.store(SpeedMillionths(speed));
}

void JumpClockAt(ClockState& clock, std::int64_t at, std::int64_t by) {
    const ClockReading reading = ReadClock(clock);
    const ClockChange change(clock);
    clock.wallOffset.store(reading.wallOffset + reading.jumpBy);
    clock.jumpAt.store(at);
    clock.jumpBy.store(by);
}

void CancelJump(ClockState& clock) {
    const ClockChange change(clock);
    clock.jumpBy.store(0);
}

int FutexWait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t realNanoSeconds) {
    if (const TimeSource* source = Simulated()) {
        return source->wait(word, expected, realNanoSeconds);
    }
    const timespec wait = TimespecOf(realNanoSeconds);
    const int savedErrno = errno;
    const long result = syscall(SYS_futex, &word, FUTEX_WAIT, expected, &wait, nullptr, 0);
    const int error = result == 0 || errno == EAGAIN ? 0 : errno;
    errno = savedErrno;
    return error;
}

void FutexWakeAll(const std::atomic<std::uint32_t>& word) {
    if (const TimeSource* source = Simulated()) {
        source->wake(word);
        return;
    }
    const int savedErrno = errno;
    syscall(SYS_futex, &word, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0);
    errno = savedErrno;
}

}  // namespace Bench
