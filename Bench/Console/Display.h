// The output of a run: lines, and on a terminal one line that is rewritten in place. One thread.
#pragma once

#include <string>

namespace Bench {

// A terminal gets colors and the progress line, anything else only plain lines.
class Display {
public:
    Display();

    bool IsTerminal() const { return m_terminal; }

    void Line(const std::string& text);
    void Quiet(const std::string& text);  // less important
    void Status(const std::string& date, const std::string& time, const std::string& text);
    void LogLine(const std::string& text);
    void Result(const std::string& text);
    void Warning(const std::string& text);
    void Indicator(const std::string& text);  // with the color names in their colors

    // Replaces the progress line; does nothing without a terminal.
    void Progress(const std::string& text);
    void EndProgress();

private:
    void Write(const std::string& text, const char* color);

    bool m_terminal;
    bool m_colored;
    bool m_progress = false;
    std::string m_date;
};

// With each blue, amber and red in its color, by the codes of a terminal.
std::string Painted(const std::string& text);

// "#######-----  58 %", with `width` characters for the bar.
std::string ProgressBar(double share, int width);

// The first `width` characters; the bytes of one UTF-8 character count as one.
std::string CutToWidth(const std::string& text, int width);

}  // namespace Bench
