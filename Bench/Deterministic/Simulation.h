// The simulation in this process: its threads run one at a time, the next one chosen at each point, and the board's
// clock goes on only by the cost of calls and, if all threads wait, to the first deadline. The hooks of this library
// call it; a call from a thread that does not belong to it must go to the next library instead.
#pragma once

#include <cstdint>

#include "Bench/Board/BoardState.h"
#include "Bench/Deterministic/EventTrace.h"
#include "Bench/Deterministic/Scheduler.h"

namespace Bench::Simulation {

constexpr std::int64_t CallCost = 100;     // simulated nanoseconds of a call
constexpr std::int64_t ClockCost = 10000;  // of reading a clock, so that a busy wait ends

// Starts with the calling thread alone, on the board that this process is attached to. Other threads that exist stay
// outside. Ends the process with a sentence if the board's policy or trace file is no good.
enum class Stops { Never, WhenAsked };  // for the bench, by Board::RunUntil
constexpr int Patience = 30;            // seconds of real time that a thread may keep the token without a call
void Begin(Stops stops = Stops::Never, int patienceSeconds = Patience);
// From now on all calls pass through. The calling thread is the last one.
void End();
// For a test: waits first until the detached threads have ended, those of clips among them. Ends the process with a
// sentence if another thread is left, since the next simulation would find it parked.
void EndAfterThreads();

bool Runs();  // and the calling thread belongs to it
std::int64_t Now();

// The calling thread's event, and the choice of who runs next.
void Point(Event event, std::int64_t cost = CallCost, std::int64_t result = 0);
// Waits. True: woken. False: the deadline is reached.
bool Block(Wait wait, const void* object, std::int64_t deadline = Scheduler::Forever);
int Wake(Wait wait, const void* object, int most = Scheduler::MaxThreads);

// Threads.
int Create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*), void* argument);
void AwaitEnd(pthread_t thread);
void Detach(pthread_t thread);
// After a fork, in the child: this process is no simulation.
void Leave();

// A simulated moment of that clock, as a deadline. The wall clock's moves if that clock is set, so the caller blocks
// again until the clock has reached it.
std::int64_t MomentOf(clockid_t clock, const timespec& until);
constexpr bool Valid(const timespec& time) { return time.tv_nsec >= 0 && time.tv_nsec < NanoSecondsPerSecond; }

// Ends the process, with what each thread waits for on the standard error.
[[noreturn]] void Fail(const char* reason);

}  // namespace Bench::Simulation
