#include "Drivers/Speaker.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <string_view>

#include "Drivers/Print.h"

namespace {

constexpr const char* MixerCommand = "amixer ";
constexpr const char* PlayerCommand = "aplay ";
constexpr const char* MasterControl = "Master ";
constexpr const char* OutputControl = "'Output Mixer HiFi' ";

constexpr std::int32_t FullVolume = 100;  // percent
constexpr int EndChecks = 5;
constexpr unsigned SecondsBetweenChecks = 1;

bool IsVolume(std::int32_t percent) { return percent >= 0 && percent <= FullVolume; }

// From here to Loop: the child of a process with many threads. Any of them may have held the lock of a stream or of the
// heap at the fork, so the child writes to the descriptors and allocates nothing.
void WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return;
        }
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

void WriteNumber(int descriptor, pid_t number) {
    char digits[16];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), number);
    WriteAll(descriptor, std::string_view(digits, static_cast<std::size_t>(end.ptr - digits)));
}

[[noreturn]] void Loop(const char* line, useconds_t gap) {
    WriteAll(STDOUT_FILENO, "In Child Process: Own pid = ");
    WriteNumber(STDOUT_FILENO, getpid());
    WriteAll(STDOUT_FILENO, " and Parent pid = ");
    WriteNumber(STDOUT_FILENO, getppid());
    while (true) {
        if (system(line) < 0) {
            WriteAll(STDERR_FILENO, "Speaker: error in player");
        }
        usleep(gap);
    }
}

}  // namespace

Speaker::~Speaker() { Stop(); }

bool Speaker::SetUnmuted(bool unmuted) {
    const std::string line = std::string(MixerCommand) + "set -q " + OutputControl + (unmuted ? "unmute" : "mute");
    return system(line.c_str()) >= 0;
}

bool Speaker::SetVolume(std::int32_t left, std::int32_t right) {
    if (!IsVolume(left) || !IsVolume(right)) {
        return false;
    }
    const std::string line = std::string(MixerCommand) + "set -q " + MasterControl + std::to_string(left) + "%," +
                             std::to_string(right) + "%";
    return system(line.c_str()) >= 0;
}

bool Speaker::Play(const std::string& path, std::int32_t gap) {
    if (m_player != -1) {
        PrintError("Speaker: already in play");
        return false;
    }
    const std::string line = std::string(PlayerCommand) + "-q " + path;
    m_player = fork();
    if (m_player < 0) {
        m_player = -1;
        PrintError("Speaker: error in play fork");
        return false;
    }
    if (m_player == 0) {
        Loop(line.c_str(), static_cast<useconds_t>(gap));
    }
    PrintOutput("In Parent Process: Own pid = " + std::to_string(getpid()) +
                " and Child pid = " + std::to_string(m_player));
    return true;
}

// The player itself is the only one to be signalled: the tool that it has started is not its to end, so that a clip is
// never cut. The last signals make sure of a player that did not hear the first.
bool Speaker::Stop() {
    if (m_player == -1) {
        return true;
    }
    kill(m_player, SIGTERM);
    const bool reaped = EndPlayer();
    kill(m_player, SIGKILL);
    if (!reaped) {
        kill(m_player, SIGKILL);
        waitpid(m_player, nullptr, 0);  // so that it leaves no entry in the process table
    }
    m_player = -1;
    return true;
}

// Whether it has ended within the time that it gets.
bool Speaker::EndPlayer() const {
    for (int check = 0; check < EndChecks; ++check) {
        sleep(SecondsBetweenChecks);
        if (waitpid(m_player, nullptr, WNOHANG) == m_player) {
            return true;
        }
    }
    return false;
}
