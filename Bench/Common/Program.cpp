#include "Bench/Common/Program.h"

#include <cstdio>

namespace Bench {

namespace {

volatile std::sig_atomic_t g_signal = 0;

void NoteSignal(int signal) { g_signal = signal; }

}  // namespace

int Refuse(const std::string& program, const std::string& error) {
    std::fprintf(stderr, "%s: %s\n", program.c_str(), error.c_str());
    return ExitWrongArgument;
}

const volatile std::sig_atomic_t& CatchSignals() {
    struct sigaction action {};
    action.sa_handler = NoteSignal;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
    return g_signal;
}

}  // namespace Bench
