// Processes that the program starts: forked children stay on the board, and a shell finds the sound tools of the bench.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

// Of a forked child; unset in a process that was not forked on a board.
std::uint32_t forkedRun = 0;
pid_t forkedBy = 0;

constexpr std::size_t LineLength = 8192;

// In single quotes for a shell.
void PutQuoted(Buffer& line, std::string_view text) {
    Put(line, "'");
    for (const char character : text) {
        Put(line, "%s%c", character == '\'' ? "'\\'" : "", character);
    }
    Put(line, "'");
}

// In front of the program's line: where the tools are found and which board they serve. The library is linked to them
// already. Without tools nothing is found, not even those that the machine may have.
void PutPreparation(Buffer& line, const BoardState& state, bool tools) {
    Put(line, "PATH=");
    PutQuoted(line, tools ? std::string_view(BENCH_TOOLS) : "/nonexistent");
    Put(line, "%s; VERNICOR_BENCH=", tools ? ":\"$PATH\"" : "");
    PutQuoted(line, state.folder);
    Put(line, "; VERNICOR_LOOP=%d", forkedBy == 0 ? 0 : static_cast<int>(getpid()));
    Put(line, "; export PATH VERNICOR_BENCH VERNICOR_LOOP; unset LD_PRELOAD; ");
}

}  // namespace

void EndWithBoard(const BoardState& state) {
    if (forkedBy != 0 && (state.run.load() != forkedRun || getppid() != forkedBy)) {
        _exit(0);
    }
}

}  // namespace Bench

using namespace Bench;

extern "C" {

// Under the board's lock, so that no other thread of this process holds it at that moment: the child could not tell
// whose it is.
pid_t fork() noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::fork();
    }
    if (CountOrFail(*state, Call::Fork) != 0) {
        return -1;
    }
    const pid_t parent = getpid();
    const std::uint32_t run = state->run.load();
    pthread_mutex_t& mutex = state->mutex;
    if (pthread_mutex_lock(&mutex) == EOWNERDEAD) {
        pthread_mutex_consistent(&mutex);
    }
    const pid_t child = Real::fork();
    const int savedErrno = errno;
    if (child == 0) {
        forkedRun = run;
        forkedBy = parent;
    } else {
        pthread_mutex_unlock(&mutex);
    }
    errno = savedErrno;
    return child;
}

// It gives its error instead of setting it.
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* argument) noexcept {
    BoardState* state = AttachedState();
    const int savedErrno = errno;
    if (state != nullptr && CountOrFail(*state, Call::ThreadCreate) != 0) {
        return std::exchange(errno, savedErrno);
    }
    return Real::pthread_create(thread, attributes, routine, argument);
}

int system(const char* command) {
    BoardState* state = AttachedState();
    if (state == nullptr || command == nullptr) {
        return Real::system(command);
    }
    EndWithBoard(*state);
    if (CountOrFail(*state, Call::System) != 0) {
        return -1;
    }
    bool tools = true;
    {
        const BoardLock lock(*state);
        tools = !FaultActive(*state, FaultName::SoundToolsMissing);
    }
    char text[LineLength];
    Buffer line{text, sizeof(text)};
    PutPreparation(line, *state, tools);
    Put(line, "%s", command);
    if (line.used + 1 >= sizeof(text)) {
        errno = E2BIG;
        return -1;
    }
    const int status = Real::system(text);
    EndWithBoard(*state);
    return status;
}
}
