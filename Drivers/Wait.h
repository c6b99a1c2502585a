// The drivers' two ways to wait, in milliseconds. Any thread.
#pragma once

#include <cstdint>

// Sleeps the whole time, also if signals interrupt it.
void SleepFor(std::uint32_t milliseconds);

// Spins until the process has used that much processor time, so other busy threads shorten the wait.
void SpinFor(std::uint32_t milliseconds);

// One or the other.
inline void WaitFor(std::uint32_t milliseconds, bool busyWait) {
    busyWait ? SpinFor(milliseconds) : SleepFor(milliseconds);
}
