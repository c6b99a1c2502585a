// Finds a thread that keeps the token without an event: it waits for something outside the simulation, or calculates
// without end. The process then ends with that thread's stack on the standard error, instead of a silent hang.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>

#include "Bench/Deterministic/EventTrace.h"

namespace Bench {

// A thread outside the simulation looks once a second of real time, but not during a pause.
void StartWatchdog(const EventTrace& trace, const std::atomic<std::uint32_t>& phase, const std::atomic<pid_t>& holder,
                   int patienceSeconds);
void StopWatchdog();

}  // namespace Bench
