#include "Bench/Peers/Script.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>

namespace Bench {

namespace {

constexpr char Blanks[] = " \t\r";

void Print(std::FILE* stream, const std::string& text) {
    std::fprintf(stream, "%s\n", text.c_str());
    std::fflush(stream);
}

void Prompt(bool isPerson, const char* prompt) {
    if (isPerson) {
        std::fputs(prompt, stdout);
        std::fflush(stdout);
    }
}

}  // namespace

int RunScript(std::istream& lines, bool isPerson, const char* prompt, const CommandFunction& run) {
    int status = PeerDone;
    std::size_t number = 0;
    Prompt(isPerson, prompt);
    for (std::string line; std::getline(lines, line); Prompt(isPerson, prompt)) {
        ++number;
        const std::vector<std::string> words = WordsOf(line);
        if (words.empty() || words[0][0] == '#') {
            continue;
        }
        const Reply reply = run(words, line);
        if (reply.kind == Reply::Wrong && !isPerson) {
            Print(stderr, "run: line " + std::to_string(number) + ": " + reply.text);
            return PeerWrongCommand;
        }
        if (reply.kind == Reply::Quit) {
            return status;
        }
        Print(stdout, reply.text);
        status = reply.kind == Reply::Failed ? PeerUnanswered : status;
    }
    return status;
}

int RunScript(const PeerOptions& options, const char* prompt, const CommandFunction& run) {
    if (options.script.empty()) {
        return RunScript(std::cin, isatty(STDIN_FILENO) == 1, prompt, run);
    }
    std::ifstream file(options.script);
    if (!file) {
        Print(stderr, "run: can't read the script " + options.script);
        return PeerWrongCommand;
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

std::string RestBehind(const std::string& line, std::size_t words) {
    std::size_t start = line.find_first_not_of(Blanks);
    for (; words > 0 && start != std::string::npos; --words) {
        start = line.find_first_not_of(Blanks, std::min(line.find_first_of(Blanks, start), line.size()));
    }
    if (start == std::string::npos) {
        return {};
    }
    return line.substr(start, line.find_last_not_of(Blanks) + 1 - start);
}

bool ReadCount(const std::string& text, std::uint64_t highest, std::uint64_t& value) {
    if (text.empty() || text.size() > 12 || text.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    value = std::strtoull(text.c_str(), nullptr, 10);
    return value <= highest;
}

bool ReadDecimal(const std::string& text, double highest, double& value) {
    if (text.empty() || text.find_first_not_of("0123456789.") != std::string::npos) {
        return false;
    }
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return *end == '\0' && value <= highest;
}

std::string SecondsText(double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%g s", seconds);
    return text;
}

}  // namespace Bench
