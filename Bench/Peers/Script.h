// Commands for a peer, one a line, from a file, a pipe or a person; each is answered by one line.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <vector>

#include "Bench/Common/CommandLine.h"
#include "Bench/Common/Program.h"

namespace Bench {

struct PeerOptions {
    std::uint16_t port = 0;
    std::string script;  // a file of commands; empty: the standard input
    double wait = 30.0;  // seconds for a connection and for an answer
};

struct Reply {
    enum Kind { Answered, Failed, Wrong, Quit };
    Kind kind = Answered;
    std::string text;
};

using CommandFunction = std::function<Reply(const std::vector<std::string>& words, const std::string& line)>;

// Runs each line, except empty ones and those that begin with "#". A wrong command ends the script unless a person can
// try again. Returns ExitSuccess, ExitFailure if a command failed or had no answer, or ExitWrongArgument for a wrong
// command or file.
int RunScript(std::istream& lines, bool isPerson, const char* prompt, const CommandFunction& run);

// The same with the file that the options name, or the standard input.
int RunScript(const PeerOptions& options, const char* prompt, const CommandFunction& run);

// Splits at blanks and tabs; no word is empty.
std::vector<std::string> WordsOf(const std::string& line);

// The text after that many words.
std::string RestAfter(const std::string& line, std::size_t words);

// "30 s", "2.5 s".
std::string SecondsText(double seconds);

}  // namespace Bench
