// Mutexes in simulated time, as several families of hooks need them. The calling thread belongs to the simulation. The
// real mutex is locked too, without waiting, so that what looks at it (a sanitizer, its owner) sees the truth.
#pragma once

#include <pthread.h>

#include <ctime>

namespace Bench::Simulation {

// 0, or an error number: ETIMEDOUT at the moment `until` of that clock; null: waits without end.
int LockMutex(pthread_mutex_t* mutex, clockid_t clock, const timespec* until);
int UnlockMutex(pthread_mutex_t* mutex);

}  // namespace Bench::Simulation
