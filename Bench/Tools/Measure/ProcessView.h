// What the kernel tells of a running program, out of /proc. Of one's own user alone; every figure is 0 once the program
// has ended. Any thread.
#pragma once

#include <sys/types.h>

#include <cstdint>

namespace Bench {

// Resident pages in kilobytes. The board's own state, which the bench maps into every program on it, is left out.
struct ResidentMemory {
    std::int64_t privatePages = 0;
    std::int64_t sharedPages = 0;

    std::int64_t All() const { return privatePages + sharedPages; }
};
ResidentMemory ResidentMemoryOf(pid_t process);

struct Activity {
    int threads = 0;
    std::uint64_t switches = 0;      // context switches of the living threads, asked for or not
    std::int64_t processorTime = 0;  // nanoseconds of all threads, the ended ones too
};
Activity ActivityOf(pid_t process);

// All of them asleep.
bool IsAsleep(pid_t process);

}  // namespace Bench
