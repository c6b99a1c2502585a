// The file "log" of the bench folder: one line for each line of the system log, with the fields priority, ident,
// options, facility, text and format separated by tabs. A tab, line end or backslash in a field is \t, \n or \\.
#include <fcntl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Bench/Board/BoardState.h"
#include "Bench/Board/Real.h"

namespace Bench {

namespace {

std::string LogPath(const BoardState& state) { return std::string(state.folder) + "/log"; }

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        const char letter = character == '\t' ? 't' : character == '\n' ? 'n' : character;
        if (letter != character || character == '\\') {
            escaped += '\\';
        }
        escaped += letter;
    }
    return escaped;
}

// Removes the next field from the line.
std::string NextField(std::string_view& line) {
    std::string field;
    std::size_t i = 0;
    for (; i < line.size() && line[i] != '\t'; ++i) {
        if (line[i] != '\\' || i + 1 == line.size()) {
            field += line[i];
            continue;
        }
        ++i;
        field += line[i] == 't' ? '\t' : line[i] == 'n' ? '\n' : line[i];
    }
    line = i < line.size() ? line.substr(i + 1) : std::string_view{};
    return field;
}

int NextNumber(std::string_view& line) { return static_cast<int>(std::strtol(NextField(line).c_str(), nullptr, 10)); }

LogLine ParseLogLine(std::string_view text) {
    LogLine line;
    line.priority = NextNumber(text);
    line.ident = NextField(text);
    line.options = NextNumber(text);
    line.facility = NextNumber(text);
    line.text = NextField(text);
    line.format = NextField(text);
    return line;
}

std::string ReadWhole(const std::string& path) {
    std::string whole;
    const int file = Real::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    char part[4096];
    for (ssize_t got = 1; file >= 0 && got > 0;) {
        got = Real::read(file, part, sizeof(part));
        whole.append(part, static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    if (file >= 0) {
        Real::close(file);
    }
    return whole;
}

}  // namespace

void AppendLogLine(const BoardState& state, const LogLine& line) {
    const std::string text = std::to_string(line.priority) + '\t' + Escaped(line.ident) + '\t' +
                             std::to_string(line.options) + '\t' + std::to_string(line.facility) + '\t' +
                             Escaped(line.text) + '\t' + Escaped(line.format) + '\n';
    const int file = Real::open(LogPath(state).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (file >= 0) {
        if (Real::write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            std::perror("board: can't write the log");
        }
        Real::close(file);
    }
}

std::vector<LogLine> Board::Log() const {
    const std::string whole = ReadWhole(LogPath(*BoardLock(*m_state)));
    std::vector<LogLine> lines;
    std::string_view rest = whole;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        lines.push_back(ParseLogLine(rest.substr(0, end)));
        rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
    }
    return lines;
}

void Board::ClearLog() { SetShadowFile(*BoardLock(*m_state), "/log", false); }

}  // namespace Bench
