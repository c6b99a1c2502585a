// Commands for a peer, one a line, from a file, a pipe or a person; one line of answer to each.
#pragma once

#include <functional>
#include <istream>
#include <string>
#include <vector>

namespace Bench {

struct PeerOptions {
    std::uint16_t port = 0;
    std::string script;  // a file of commands; empty: the standard input
    double wait = 30.0;  // seconds for a connection and for an answer
};

constexpr int PeerDone = 0;          // all was answered
constexpr int PeerUnanswered = 1;    // something wasn't, or failed
constexpr int PeerWrongCommand = 2;  // there is no such command, port or file

struct Reply {
    enum Kind { Answered, Failed, Wrong, Quit };
    Kind kind = Answered;
    std::string text;
};

using CommandFunction = std::function<Reply(const std::vector<std::string>& words, const std::string& line)>;

// Runs each line; blank ones and those that begin with "#" are skipped. A wrong command ends it unless a person can try
// again. The exit status.
int RunScript(std::istream& lines, bool isPerson, const char* prompt, const CommandFunction& run);

// The same with the file or the standard input that the options name.
int RunScript(const PeerOptions& options, const char* prompt, const CommandFunction& run);

// At blanks and tabs; none of them is empty.
std::vector<std::string> WordsOf(const std::string& line);

// What stands behind that many words.
std::string RestBehind(const std::string& line, std::size_t words);

bool ReadCount(const std::string& text, std::uint64_t highest, std::uint64_t& value);
bool ReadDecimal(const std::string& text, double highest, double& value);

// "30 s", "2.5 s".
std::string SecondsText(double seconds);

}  // namespace Bench
