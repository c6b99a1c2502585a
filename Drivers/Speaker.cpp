#include "Drivers/Speaker.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstddef>
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
constexpr std::size_t DigitsOfNumber = 16;  // at most

bool IsVolume(std::int32_t percent) { return percent >= 0 && percent <= FullVolume; }

// False only if no shell could be started: the tool's exit status is ignored. Allocates nothing.
bool RunTool(const char* line) {
    // NOLINTNEXTLINE(cert-env33-c): the tools are found and their arguments parted by the instrument's shell
    return system(line) >= 0;
}

// From here to Loop: the child of a process with many threads. Any of them may have held the lock of a stream or of the
// heap at the fork, so the child writes to the descriptors and allocates nothing.
char* Put(char* place, std::string_view text) { return std::copy(text.begin(), text.end(), place); }

char* Put(char* place, pid_t number) { return std::to_chars(place, place + DigitsOfNumber, number).ptr; }

void Write(int descriptor, std::string_view text) {
    while (write(descriptor, text.data(), text.size()) < 0 && errno == EINTR) {
    }
}

void IntroduceChild() {
    char text[128];
    char* end = Put(text, "In Child Process: Own pid = ");
    end = Put(end, getpid());
    end = Put(end, " and Parent pid = ");
    end = Put(end, getppid());
    Write(STDOUT_FILENO, std::string_view(text, static_cast<std::size_t>(end - text)));
}

[[noreturn]] void Loop(const char* line, useconds_t gap) {
    IntroduceChild();
    while (true) {
        if (!RunTool(line)) {
            Write(STDERR_FILENO, "Speaker: error in player");
        }
        usleep(gap);
    }
}

}  // namespace

Speaker::~Speaker() { Stop(); }

bool Speaker::SetUnmuted(bool unmuted) {
    const std::string line = std::string(MixerCommand) + "set -q " + OutputControl + (unmuted ? "unmute" : "mute");
    return RunTool(line.c_str());
}

bool Speaker::SetVolume(std::int32_t left, std::int32_t right) {
    if (!IsVolume(left) || !IsVolume(right)) {
        return false;
    }
    const std::string line = std::string(MixerCommand) + "set -q " + MasterControl + std::to_string(left) + "%," +
                             std::to_string(right) + "%";
    return RunTool(line.c_str());
}

bool Speaker::Play(const std::string& path, std::int32_t gap) {
    if (m_player != -1) {
        return FailWithError("Speaker: already in play");
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

// Only the player is signaled, not the tool that it has started, so that a clip is never cut. SIGKILL ends a player
// that did not react to SIGTERM.
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

// True if the player ended within the time allowed.
bool Speaker::EndPlayer() const {
    for (int check = 0; check < EndChecks; ++check) {
        sleep(SecondsBetweenChecks);
        if (waitpid(m_player, nullptr, WNOHANG) == m_player) {
            return true;
        }
    }
    return false;
}
