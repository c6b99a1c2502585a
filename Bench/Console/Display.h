// What a person sees of a run: lines that stay, and on a terminal one line that is rewritten in place. Used by one
// thread.
#pragma once

#include <string>

namespace Bench {

// A terminal gets color and the line in place, anything else plain lines alone.
class Display {
public:
    Display();

    bool IsTerminal() const { return m_terminal; }

    void Line(const std::string& text);   // as it is
    void Quiet(const std::string& text);  // what matters less
    void Status(const std::string& date, const std::string& time, const std::string& text);
    void LogLine(const std::string& text);
    void Result(const std::string& text);
    void Warning(const std::string& text);
    void Indicator(const std::string& text);  // each color that it names in that color

    // Replaces the line in place; nothing but on a terminal.
    void Progress(const std::string& text);
    void EndProgress();

private:
    void Write(const std::string& text, const char* color);

    bool m_terminal;
    bool m_colored;
    bool m_progress = false;
    std::string m_date;
};

// Each blue, amber and red in the text painted in its color, as a terminal wants it.
std::string Painted(const std::string& text);

// "#######-----  58 %" in that many characters for the bar.
std::string ProgressBar(double share, int width);

// Cut to that many characters; bytes of one UTF-8 character are counted as one.
std::string CutToWidth(const std::string& text, int width);

}  // namespace Bench
