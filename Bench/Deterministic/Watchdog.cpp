#include "Bench/Deterministic/Watchdog.h"

#include <execinfo.h>
#include <linux/futex.h>
#include <sys/syscall.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Bench/Board/ExactState.h"
#include "Bench/Deterministic/Next.h"

namespace Bench {

namespace {

struct Watched {
    const EventTrace* trace;
    const std::atomic<std::uint32_t>* phase;
    const std::atomic<pid_t>* holder;
    int patience;  // seconds
};

Watched watched{};
pthread_t watchdog{};
bool started = false;
std::atomic<std::uint32_t> over{0};  // futex word

int HangSignal() { return SIGRTMAX - 1; }

void Write(const char* text, std::size_t length) {
    if (Real::write(2, text, length) < 0) {
        std::_Exit(71);
    }
}

// May be called in a signal handler.
void Say(const char* rest) {
    char text[128];
    const int length = std::snprintf(
        text, sizeof(text), "\nexact time: a thread has kept the token for %d s without a call. ", watched.patience);
    Write(text, static_cast<std::size_t>(length));
    Write(rest, std::strlen(rest));
}

// In the thread that has the token.
void ShowStack(int) {
    Say("Its stack:\n");
    void* frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), 2);
    std::_Exit(71);
}

// A second of real time. False once the simulation is over.
bool LookAgain() {
    const timespec second{1, 0};
    Next::syscall(SYS_futex, &over, FUTEX_WAIT_PRIVATE, 0, &second, nullptr, 0);
    return over.load() == 0;
}

void* Watch(void*) {
    std::uint32_t last = 0;
    for (int seconds = 0; LookAgain();) {
        const std::uint32_t beat = watched.trace->Beat();
        const bool running = watched.phase->load() == static_cast<std::uint32_t>(ExactPhase::Running);
        seconds = running && beat == last ? seconds + 1 : 0;
        last = beat;
        if (seconds == watched.patience) {
            Next::syscall(SYS_tgkill, Next::syscall(SYS_getpid), watched.holder->load(), HangSignal());
        } else if (seconds > watched.patience) {
            Say("It has no stack to show: it takes no signal, or has ended without handing on the token.\n");
            std::_Exit(71);
        }
    }
    return nullptr;
}

}  // namespace

void StartWatchdog(const EventTrace& trace, const std::atomic<std::uint32_t>& phase, const std::atomic<pid_t>& holder,
                   int patienceSeconds) {
    watched = {&trace, &phase, &holder, patienceSeconds};
    over.store(0);
    void* frame[1];
    backtrace(frame, 1);  // loads what it needs now, not in the signal
    struct sigaction action {};
    action.sa_handler = ShowStack;
    sigaction(HangSignal(), &action, nullptr);
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    started = Next::pthread_create(&watchdog, nullptr, Watch, nullptr) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void StopWatchdog() {
    over.store(1);
    Next::syscall(SYS_futex, &over, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    if (started) {
        Next::pthread_join(watchdog, nullptr);
    }
}

}  // namespace Bench
