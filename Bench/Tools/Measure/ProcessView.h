// What /proc shows of a running process of the same user; every figure is 0 after its end. Any thread.
#pragma once

#include <sys/types.h>

#include <cstdint>

namespace Bench {

// Resident pages in kilobytes, without the board's state, which the bench maps into every program.
struct ResidentMemory {
    std::int64_t privatePages = 0;
    std::int64_t sharedPages = 0;

    std::int64_t All() const { return privatePages + sharedPages; }
};
ResidentMemory ResidentMemoryOf(pid_t process);

struct Activity {
    int threads = 0;
    std::uint64_t switches = 0;      // voluntary and other context switches of the living threads
    std::int64_t processorTime = 0;  // nanoseconds of all threads, including ended ones
};
Activity ActivityOf(pid_t process);

// All of them asleep.
bool IsAsleep(pid_t process);

}  // namespace Bench
