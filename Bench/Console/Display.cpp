#include "Bench/Console/Display.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Bench {

namespace {

constexpr const char* Plain = "";
constexpr const char* Dim = "\033[2m";
constexpr const char* Bold = "\033[1m";
constexpr const char* Amber = "\033[33m";
constexpr const char* Blue = "\033[94m";
constexpr const char* Red = "\033[31m";
constexpr const char* Cyan = "\033[36m";
constexpr const char* NoColor = "\033[0m";
constexpr const char* EraseLine = "\r\033[K";

int TerminalWidth() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

Display::Display()
    : m_terminal(isatty(STDOUT_FILENO) == 1), m_colored(m_terminal && std::getenv("NO_COLOR") == nullptr) {}

void Display::Write(const std::string& text, const char* color) {
    EndProgress();
    const bool colored = m_colored && *color != '\0';
    std::printf("%s%s%s\n", colored ? color : "", text.c_str(), colored ? NoColor : "");
    std::fflush(stdout);
}

void Display::Line(const std::string& text) { Write(text, Plain); }

void Display::Quiet(const std::string& text) { Write(text, Dim); }

void Display::Status(const std::string& date, const std::string& time, const std::string& text) {
    if (date != m_date) {
        m_date = date;
        Write("---- " + date + " ----", Dim);
    }
    Write(time + "  " + text, Plain);
}

void Display::LogLine(const std::string& text) { Write("    log  " + text, Dim); }

void Display::Result(const std::string& text) { Write(text, m_terminal ? Bold : Plain); }

void Display::Warning(const std::string& text) { Write(text, Amber); }

void Display::Indicator(const std::string& text) { Write(m_colored ? Painted(text) : text, Plain); }

void Display::Progress(const std::string& text) {
    if (!m_terminal) {
        return;
    }
    const std::string cut = CutToWidth(text, TerminalWidth() - 1);
    std::printf("%s%s%s%s", EraseLine, m_colored ? Cyan : "", cut.c_str(), m_colored ? NoColor : "");
    std::fflush(stdout);
    m_progress = true;
}

void Display::EndProgress() {
    if (m_progress) {
        std::fputs(EraseLine, stdout);
        std::fflush(stdout);
        m_progress = false;
    }
}

std::string Painted(const std::string& text) {
    constexpr struct {
        const char* word;
        const char* color;
    } Words[] = {{"blue", Blue}, {"amber", Amber}, {"red", Red}};
    std::string painted = text;
    for (const auto& row : Words) {
        const std::string word = row.word;
        const std::string paint = row.color + word + NoColor;
        for (std::size_t at = painted.find(word); at != std::string::npos; at = painted.find(word, at + paint.size())) {
            painted.replace(at, word.size(), paint);
        }
    }
    return painted;
}

std::string ProgressBar(double share, int width) {
    const double bounded = std::clamp(share, 0.0, 1.0);
    const int filled = static_cast<int>(std::floor(bounded * width + 1e-9));
    std::string bar;
    for (int i = 0; i < width; ++i) {
        bar += i < filled ? '#' : '-';
    }
    char percent[16];
    std::snprintf(percent, sizeof(percent), " %3d %%", static_cast<int>(std::floor(bounded * 100.0 + 1e-9)));
    return bar + percent;
}

std::string CutToWidth(const std::string& text, int width) {
    std::string cut;
    int characters = 0;
    for (const char byte : text) {
        const bool continues = (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
        if (!continues && ++characters > width) {
            break;
        }
        cut += byte;
    }
    return cut;
}

}  // namespace Bench
