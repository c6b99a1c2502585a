// The functions that the simulation's hooks replace, as the libraries after this one have them.
#pragma once

#include <sched.h>
#include <sys/wait.h>
#include <csignal>

#include "Bench/Board/Real.h"

namespace Bench {

// As FindNext of the board, but after this library.
void* FindAfter(const char* name);

// clang-format off
#define BENCH_NEXT_FUNCTIONS(ROW)                                                                                   \
    ROW(pthread_create) ROW(pthread_join) ROW(pthread_detach)                                                       \
    ROW(pthread_mutex_lock) ROW(pthread_mutex_trylock) ROW(pthread_mutex_timedlock) ROW(pthread_mutex_clocklock)    \
    ROW(pthread_mutex_unlock)                                                                                       \
    ROW(pthread_cond_wait) ROW(pthread_cond_timedwait) ROW(pthread_cond_clockwait) ROW(pthread_cond_signal)         \
    ROW(pthread_cond_broadcast)                                                                                     \
    ROW(sem_wait) ROW(sem_trywait) ROW(sem_timedwait) ROW(sem_clockwait) ROW(sem_post)                              \
    ROW(clock_gettime) ROW(gettimeofday) ROW(time) ROW(clock) ROW(usleep) ROW(sched_yield) ROW(syscall)             \
    ROW(fork) ROW(system) ROW(kill) ROW(waitpid) ROW(getpid) ROW(getppid)
// clang-format on

namespace Next {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name that is declared takes none
#define BENCH_DECLARE(name) extern decltype(RealOf(&::name)) name;
BENCH_NEXT_FUNCTIONS(BENCH_DECLARE)
#undef BENCH_DECLARE

void FindAll();
}  // namespace Next

}  // namespace Bench
