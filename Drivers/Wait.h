// The drivers' two ways to let time pass, in milliseconds. Any thread.
#pragma once

#include <cstdint>

// Asleep, for the whole time whatever signal comes.
void SleepFor(std::uint32_t milliseconds);

// Awake, until the process has used that much processor time: other threads at work shorten it.
void SpinFor(std::uint32_t milliseconds);

// One or the other.
inline void WaitFor(std::uint32_t milliseconds, bool busyWait) {
    busyWait ? SpinFor(milliseconds) : SleepFor(milliseconds);
}
