#include "Bench/Peers/FrontEndPanel.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

#include "Bench/Peers/FrontEndProgram.h"
#include "Bench/Peers/TestFrames.h"

namespace Bench {

namespace {

constexpr int PollMilliseconds = 100;
constexpr std::size_t Width = 60;
constexpr char EndKey = 'q';
constexpr char EndOfFile = 4;  // Ctrl-D
constexpr char Interrupt = 3;  // Ctrl-C

constexpr struct {
    char key;
    int code;
    const char* name;
} Buttons[] = {
    {'i', FrontEnd::Idle, "idle"},
    {'r', FrontEnd::Running, "running"},
    {'x', FrontEnd::Reset, "reset"},
    {'p', FrontEnd::Prime, "prime"},
};

// While one exists, the terminal passes on each key at once and does not echo it.
class KeyMode {
public:
    KeyMode() {
        m_isSet = tcgetattr(STDIN_FILENO, &m_former) == 0;
        termios keys = m_former;
        keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
        if (m_isSet) {
            tcsetattr(STDIN_FILENO, TCSANOW, &keys);
        }
    }
    ~KeyMode() {
        if (m_isSet) {
            tcsetattr(STDIN_FILENO, TCSANOW, &m_former);
        }
    }
    KeyMode(const KeyMode&) = delete;
    KeyMode& operator=(const KeyMode&) = delete;

private:
    termios m_former{};
    bool m_isSet = false;
};

std::string Row(const std::string& text) {
    std::string row = text.substr(0, Width);
    row.resize(Width, ' ');
    return "| " + row + " |";
}

// Draws over the previous lines.
void Draw(const std::vector<std::string>& lines, bool isFirst) {
    if (!isFirst) {
        std::printf("\033[%zuA", lines.size());
    }
    for (const std::string& line : lines) {
        std::printf("\r\033[K%s\n", line.c_str());
    }
    std::fflush(stdout);
}

char ReadKey() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    char key = 0;
    if (poll(&input, 1, PollMilliseconds) <= 0) {
        return 0;
    }
    return read(STDIN_FILENO, &key, 1) == 1 ? key : EndKey;
}

std::string Press(FrontEnd& frontEnd, char key) {
    for (const auto& button : Buttons) {
        if (key == button.key) {
            return std::string(button.name) + (frontEnd.SendCode(button.code) ? " sent" : ": no analyzer is connected");
        }
    }
    return {};
}

}  // namespace

std::vector<std::string> PanelLines(const Screen& screen, bool isConnected, const std::string& note) {
    const std::string edge = "+" + std::string(Width + 2, '-') + "+";
    std::string buttons;
    for (const auto& button : Buttons) {
        buttons += std::string("[") + button.key + "] " + button.name + "  ";
    }
    return {
        edge,
        Row("Chlorine  " + Printable(screen.chlorine)),
        Row("          " + Printable(DateOf(screen))),
        Row("Status    " + Printable(screen.status)),
        Row("State     " + StateOf(screen)),
        Row("Version   " + Printable(screen.version)),
        Row(isConnected ? "connected" : "waiting for the analyzer"),
        edge,
        buttons + "[" + EndKey + "] quit   " + note,
    };
}

int RunFrontEndPanel(FrontEnd& frontEnd) {
    const KeyMode keys;
    std::vector<std::string> shown;
    std::string note;
    for (char key = 0; key != EndKey && key != EndOfFile && key != Interrupt; key = ReadKey()) {
        if (key != 0) {
            note = Press(frontEnd, key);
        }
        const std::vector<std::string> lines = PanelLines(frontEnd.Screen(), frontEnd.IsConnected(), note);
        if (lines != shown) {
            Draw(lines, shown.empty());
            shown = lines;
        }
    }
    return ExitSuccess;
}

}  // namespace Bench
