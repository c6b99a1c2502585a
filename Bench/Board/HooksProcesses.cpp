// Processes that the program starts. Forked children stay on the board, and a shell finds the bench's sound tools.
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

// Of a forked child; unset in a process that was not forked on a board.
std::uint32_t forkedRun = 0;
pid_t forkedBy = 0;

constexpr std::size_t LineLength = 8192;

// Quotes the text for a shell.
void PutQuoted(Buffer& line, std::string_view text) {
    Put(line, "'");
    for (const char character : text) {
        Put(line, "%s%c", character == '\'' ? "'\\'" : "", character);
    }
    Put(line, "'");
}

// Puts before the program's line where the tools are and which board they serve. They are linked to the library, so it
// is not preloaded. Without tools the shell finds none, not even the machine's.
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

// Under the board's lock, so that the child never inherits a lock that another thread holds.
pid_t fork() noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::fork();
    }
    if (CountOrFail(*state, "fork") != 0) {
        return -1;
    }
    const pid_t parent = getpid();
    const std::uint32_t run = state->run.load();
    if (pthread_mutex_lock(&state->mutex) == EOWNERDEAD) {
        pthread_mutex_consistent(&state->mutex);
    }
    const pid_t child = Real::fork();
    const int savedErrno = errno;
    if (child == 0) {
        forkedRun = run;
        forkedBy = parent;
    } else {
        pthread_mutex_unlock(&state->mutex);
    }
    errno = savedErrno;
    return child;
}

// It returns its error instead of setting errno.
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* argument) noexcept {
    BoardState* state = AttachedState();
    const int error = state == nullptr ? 0 : CountCall(*BoardLock(*state), "pthread_create");
    return error == 0 ? Real::pthread_create(thread, attributes, routine, argument) : error;
}

int system(const char* command) {
    BoardState* state = AttachedState();
    if (state == nullptr || command == nullptr) {
        return Real::system(command);
    }
    EndWithBoard(*state);
    if (CountOrFail(*state, "system") != 0) {
        return -1;
    }
    const bool tools = !FaultActive(*BoardLock(*state), "sound-tools-missing");
    char text[LineLength];
    Buffer line{text, sizeof(text)};
    PutPreparation(line, *state, tools);
    Put(line, "%s", command);
    if (line.used + 1 >= sizeof(text)) {
        return Answer(E2BIG);
    }
    const int status = Real::system(text);
    EndWithBoard(*state);
    return status;
}
}
