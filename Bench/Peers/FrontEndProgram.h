// The front end for a script: one command a line, and the analyzer's answer to it.
#pragma once

#include "Bench/Peers/FrontEnd.h"
#include "Bench/Peers/Script.h"

namespace Bench {

// "idle", "running", "reset", "prime", "code 8", "text 1~x", "wait ChlorineValue", "show", "help", "quit".
class FrontEndProgram {
public:
    FrontEndProgram(FrontEnd& frontEnd, double wait) : m_frontEnd(frontEnd), m_wait(wait) {}

    Reply Run(const std::vector<std::string>& words, const std::string& line);

    static std::string HelpText();

private:
    Reply Enter(const std::string& state, int code, const std::string& command);
    Reply Reset();
    Reply SendAndForget(const std::string& name, const std::string& bytes);
    Reply WaitFor(const std::vector<std::string>& words, const std::string& line);
    Reply Unanswered(const std::string& name) const;

    FrontEnd& m_frontEnd;
    double m_wait;
    std::size_t m_seen = 0;  // frames that earlier commands have used
};

// What the front end shows, in one line.
std::string DescribeScreen(const Screen& screen);

// "idle" for -1, "running" for -2, "unknown" before the first.
std::string StateOf(const Screen& screen);

// The date as the display shows it: without the "@" before it and the line feed after it.
std::string DateOf(const Screen& screen);

// Listens and runs the commands, or shows the panel on a terminal. Returns the exit status.
int RunFrontEnd(const PeerOptions& options);

}  // namespace Bench
