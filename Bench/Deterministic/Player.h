// The children of the program that repeat a clip. In exact time such a child is a thread of the simulation.
#pragma once

#include <sys/types.h>

namespace Bench {

// Makes the process that a fork of the program starts: forks for real, and runs the child until it first rests after
// its first command, so that the command and the rest are known. Returns 0 in that child; in the program the number of
// the process that repeats them from now on, or -1 with errno.
pid_t ForkPlayer();
bool InForkedChild();
pid_t NumberOfForkedChild();

// In the forked child, what it does. The second ends it.
void NoteCommand(const char* command);
[[noreturn]] void NoteRest(useconds_t microSeconds);

// Of a process that ForkPlayer returned; as the functions of libc. A clip that has begun plays to its end.
int KillPlayer(pid_t process, int signal);
pid_t AwaitPlayer(pid_t process, int* status, int options);

}  // namespace Bench
