#include "Bench/Sound/ToolCall.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Bench {

namespace {

bool NeedsNoQuotes(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || std::strchr("_./,%:=+-", character) != nullptr;
}

std::string Quoted(const std::string& argument) {
    bool plain = !argument.empty();
    std::string text = "'";
    for (const char character : argument) {
        plain = plain && NeedsNoQuotes(character);
        text += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return plain ? argument : text + "'";
}

}  // namespace

std::unique_ptr<Board> BoardOfTool(const std::string& tool) {
    DetachThisProcess();
    const char* folder = std::getenv("VERNICOR_BENCH");
    std::string error = "VERNICOR_BENCH is not set to a bench folder";
    std::unique_ptr<Board> board;
    if (folder != nullptr && *folder != '\0') {
        board = Board::Open(folder, error);
    }
    if (board == nullptr) {
        std::fprintf(stderr, "%s: %s\n", tool.c_str(), error.c_str());
    }
    return board;
}

std::string CommandLine(const std::string& tool, int count, char** arguments) {
    std::string line = tool;
    for (int i = 1; i < count; ++i) {
        line += " " + Quoted(arguments[i]);
    }
    return line;
}

}  // namespace Bench
