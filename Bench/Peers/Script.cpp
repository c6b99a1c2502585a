#include "Bench/Peers/Script.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iostream>

namespace Bench {

namespace {

constexpr char Blanks[] = " \t\r";

void Print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

}  // namespace

int RunScript(std::istream& lines, bool isPerson, const char* prompt, const CommandFunction& run) {
    int status = ExitSuccess;
    std::size_t number = 0;
    const std::string shown = isPerson ? prompt : "";
    Print(shown);
    for (std::string line; std::getline(lines, line); Print(shown)) {
        ++number;
        const std::vector<std::string> words = WordsOf(line);
        if (words.empty() || words[0][0] == '#') {
            continue;
        }
        const Reply reply = run(words, line);
        if (reply.kind == Reply::Wrong && !isPerson) {
            return Refuse("run", "line " + std::to_string(number) + ": " + reply.text);
        }
        if (reply.kind == Reply::Quit) {
            return status;
        }
        Print(reply.text + "\n");
        status = reply.kind == Reply::Failed ? ExitFailure : status;
    }
    return status;
}

int RunScript(const PeerOptions& options, const char* prompt, const CommandFunction& run) {
    if (options.script.empty()) {
        return RunScript(std::cin, isatty(STDIN_FILENO) == 1, prompt, run);
    }
    std::ifstream file(options.script);
    if (!file) {
        return Refuse("run", "can't read the script " + options.script);
    }
    return RunScript(file, false, prompt, run);
}

std::vector<std::string> WordsOf(const std::string& line) {
    std::vector<std::string> words;
    for (std::size_t start = line.find_first_not_of(Blanks); start != std::string::npos;) {
        const std::size_t end = std::min(line.find_first_of(Blanks, start), line.size());
        words.push_back(line.substr(start, end - start));
        start = line.find_first_not_of(Blanks, end);
    }
    return words;
}

std::string RestAfter(const std::string& line, std::size_t words) {
    std::size_t start = line.find_first_not_of(Blanks);
    for (; words > 0 && start != std::string::npos; --words) {
        start = line.find_first_not_of(Blanks, std::min(line.find_first_of(Blanks, start), line.size()));
    }
    if (start == std::string::npos) {
        return {};
    }
    return line.substr(start, line.find_last_not_of(Blanks) + 1 - start);
}

std::string SecondsText(double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%g s", seconds);
    return text;
}

}  // namespace Bench
