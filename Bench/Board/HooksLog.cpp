// The system log: kept in the bench folder as the program gave it, printed on the error stream if the program asks for
// that, and never passed to the machine's log.
#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "Bench/Board/Attachment.h"
#include "Bench/Board/Real.h"

using namespace Bench;

namespace {

constexpr int AllPriorities = 0xff;

// One for the process, as in libc. Guarded by the board's lock, which fork never leaves locked in the child.
struct LogSettings {
    char ident[256] = {};
    int options = 0;
    int facility = LOG_USER;
    int mask = AllPriorities;
};

LogSettings settings;

const char* Ident() { return settings.ident[0] != '\0' ? settings.ident : program_invocation_short_name; }

void PrintOnErrorStream(const std::string& text) {
    std::string line = Ident();
    if ((settings.options & LOG_PID) != 0) {
        line += "[" + std::to_string(getpid()) + "]";
    }
    line += ": " + text;
    if (line.back() != '\n') {
        line += '\n';
    }
    if (Real::write(STDERR_FILENO, line.data(), line.size()) < 0) {
        return;  // as libc does
    }
}

void Keep(BoardState& state, int priority, const char* format, const std::string& text) {
    const BoardLock lock(state);
    if ((LOG_MASK(LOG_PRI(priority)) & settings.mask) == 0) {
        return;
    }
    AppendLogLine(state, {Ident(), settings.options, settings.facility, priority, format, text});
    if ((settings.options & LOG_PERROR) != 0) {
        PrintOnErrorStream(text);
    }
    Changed(state);
}

void Log(int priority, const char* format, va_list arguments) {
    const int savedErrno = errno;  // "%m" prints it
    BoardState* state = AttachedState();
    if (state == nullptr) {
        Real::vsyslog(priority, format, arguments);
        return;
    }
    const DeviceCall call(*state);  // writing the file replaces the instrument's sending of a datagram
    const OwnAllocations own;
    va_list again;
    va_copy(again, arguments);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    errno = savedErrno;
    std::vsnprintf(text.data(), text.size() + 1, format, again);
#pragma GCC diagnostic pop
    va_end(again);
    Keep(*state, priority, format, text);
    errno = savedErrno;
}

}  // namespace

extern "C" {

void openlog(const char* ident, int options, int facility) {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        Real::openlog(ident, options, facility);
        return;
    }
    const BoardLock lock(*state);
    std::snprintf(settings.ident, sizeof(settings.ident), "%s", ident == nullptr ? "" : ident);
    settings.options = options;
    settings.facility = facility;
}

void closelog() {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        Real::closelog();
        return;
    }
    const BoardLock lock(*state);
    settings.ident[0] = '\0';
}

int setlogmask(int mask) noexcept {
    BoardState* state = AttachedState();
    if (state == nullptr) {
        return Real::setlogmask(mask);
    }
    const BoardLock lock(*state);
    const int before = settings.mask;
    settings.mask = mask == 0 ? before : mask;
    return before;
}

void vsyslog(int priority, const char* format, va_list arguments) { Log(priority, format, arguments); }
void __vsyslog_chk(int priority, int /*flag*/, const char* format, va_list arguments) {
    Log(priority, format, arguments);
}

void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Log(priority, format, arguments);
    va_end(arguments);
}

void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Log(priority, format, arguments);
    va_end(arguments);
}
}
