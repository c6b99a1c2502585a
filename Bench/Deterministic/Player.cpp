#include "Bench/Deterministic/Player.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/BoardState.h"
#include "Bench/Deterministic/Next.h"
#include "Bench/Deterministic/Simulation.h"
#include "Bench/Deterministic/Unwatched.h"
#include "Bench/Sound/Clip.h"

namespace Bench {

namespace {

constexpr int MaxProcesses = 64;

struct Player {
    pid_t process = 0;  // 0: free
    bool ended = false;
    bool reaped = false;
    bool finished = false;  // its thread
    useconds_t gap = 0;
    char command[512] = {};
};

Player players[MaxProcesses];
pid_t made = 0;
int toProgram = -1;  // in the forked child

Player* FindPlayer(pid_t process) {
    auto* const found = std::find_if(std::begin(players), std::end(players),
                                     [process](const Player& each) { return each.process == process; });
    return found == std::end(players) ? nullptr : found;
}

void Release(Player& player) {
    if (player.reaped && player.finished) {
        player.process = 0;
    }
}

// As the bench's player: the last word of the command is the file.
void PlayOnce(BoardState& state, const Player& player) {
    if (FaultActive(*BoardLock(state), "sound-tools-missing")) {
        return;
    }
    NoteSoundCall(*BoardLock(state), player.command);
    const std::string path = std::strrchr(player.command, ' ') + 1;
    Target target;
    Resolve(state, path.c_str(), target);
    std::string error;
    if (const auto length = ClipNanoSeconds(target.inside ? target.path : path, error)) {
        PlayClip(state, path.substr(path.rfind('/') + 1).c_str(), *length, player.process);
    }
}

void* Repeat(void* argument) {
    const Unwatched unwatched;
    Player& player = *static_cast<Player*>(argument);
    while (!player.ended) {
        PlayOnce(*AttachedState(), player);
        if (!player.ended) {
            Simulation::Block(Wait::Word, &player, Simulation::Now() + std::int64_t{player.gap} * 1000);
        }
    }
    player.finished = true;
    Release(player);
    return nullptr;
}

// Reads what the forked child noted until it ended.
bool ReadNotes(int file, pid_t child, Player& player) {
    const Unwatched unwatched;
    std::size_t used = 0;
    ssize_t moved = 0;
    while ((moved = Real::read(file, player.command + used, sizeof(player.command) - 1 - used)) > 0) {
        used += static_cast<std::size_t>(moved);
    }
    Next::waitpid(child, nullptr, 0);
    const std::size_t length = ::strnlen(player.command, used);
    if (length == 0 || std::strchr(player.command, ' ') == nullptr || used != length + 1 + sizeof(player.gap)) {
        return false;
    }
    std::memcpy(&player.gap, player.command + length + 1, sizeof(player.gap));
    return true;
}

}  // namespace

bool InForkedChild() { return toProgram >= 0; }

pid_t NumberOfForkedChild() { return FirstVirtualProcess + made - 1; }

pid_t ForkPlayer() {
    Simulation::Point(Event::Fork, Simulation::ClockCost);
    Player* player = FindPlayer(0);
    int ends[2];
    if (player == nullptr || pipe2(ends, O_CLOEXEC) != 0) {
        errno = EAGAIN;
        return -1;
    }
    *player = Player{};
    player->process = FirstVirtualProcess + made++;
    const pid_t child = Next::fork();
    if (child == 0) {
        Simulation::Leave();
        toProgram = ends[1];
        return 0;
    }
    Real::close(ends[1]);
    if (child > 0 && !ReadNotes(ends[0], child, *player)) {
        Simulation::Fail("a child of the program does not repeat one command");
    }
    Real::close(ends[0]);
    pthread_t thread{};
    if (child < 0 || Simulation::Create(&thread, nullptr, Repeat, player) != 0) {
        player->process = 0;
        return -1;
    }
    Simulation::Detach(thread);
    Next::pthread_detach(thread);
    return player->process;
}

void NoteCommand(const char* command) {
    static bool noted = false;
    if (!noted && Real::write(toProgram, command, std::strlen(command) + 1) < 0) {
        _exit(1);
    }
    noted = true;
}

void NoteRest(useconds_t microSeconds) {
    _exit(Real::write(toProgram, &microSeconds, sizeof(microSeconds)) < 0 ? 1 : 0);
}

int KillPlayer(pid_t process, int signal) {
    Simulation::Point(Event::Kill, Simulation::ClockCost, signal);
    Player* player = FindPlayer(process);
    if (player == nullptr || player->reaped) {
        errno = ESRCH;
        return -1;
    }
    if (signal != 0 && !player->ended) {
        player->ended = true;
        Simulation::Wake(Wait::Word, player);
        const BoardLock state(*AttachedState());
        for (PlayerEntry& entry : state->sound.players) {
            entry.loop = entry.loop == process ? 0 : entry.loop;
        }
    }
    return 0;
}

pid_t AwaitPlayer(pid_t process, int* status, int options) {
    Simulation::Point(Event::Kill, Simulation::ClockCost, 0);
    Player* player = FindPlayer(process);
    if (player == nullptr || player->reaped) {
        errno = ECHILD;
        return -1;
    }
    while (!player->ended) {
        if ((options & WNOHANG) != 0) {
            return 0;
        }
        Simulation::Block(Wait::Word, player);
    }
    if (status != nullptr) {
        *status = SIGTERM;
    }
    player->reaped = true;
    Release(*player);
    return process;
}

}  // namespace Bench
