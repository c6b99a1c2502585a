// Processes. The program's number is the same in each run, and its children are threads of the simulation.
#include <unistd.h>

#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Player.h"
#include "Bench/Deterministic/Simulation.h"

using namespace Bench;

namespace {

constexpr pid_t ProgramProcess = 1000;
constexpr std::int64_t CommandCost = 20000000;  // simulated nanoseconds of a shell with a short command

}  // namespace

extern "C" {

pid_t getpid() noexcept {
    if (InForkedChild()) {
        return NumberOfForkedChild();
    }
    return Simulation::Runs() ? ProgramProcess : Next::getpid();
}

pid_t getppid() noexcept { return InForkedChild() ? ProgramProcess : Next::getppid(); }

pid_t fork() noexcept { return Simulation::Runs() ? ForkPlayer() : Next::fork(); }

int kill(pid_t process, int signal) noexcept {
    if (Simulation::Runs() && process >= FirstVirtualProcess) {
        return KillPlayer(process, signal);
    }
    const bool own = Simulation::Runs() && process == ProgramProcess;
    return Next::kill(own ? Next::getpid() : process, signal);
}

pid_t waitpid(pid_t process, int* status, int options) {
    return Simulation::Runs() && process >= FirstVirtualProcess ? AwaitPlayer(process, status, options)
                                                                : Next::waitpid(process, status, options);
}

int system(const char* command) {
    if (InForkedChild()) {
        NoteCommand(command);
        return 0;
    }
    if (Simulation::Runs()) {
        Simulation::Point(Event::Run, CommandCost);
    }
    return Next::system(command);
}

int usleep(useconds_t microSeconds) {
    if (InForkedChild()) {
        NoteRest(microSeconds);
    }
    return Next::usleep(microSeconds);
}
}
