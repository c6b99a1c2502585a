// The test station for a person or a script: a command number with its settings, and the answer in words.
#pragma once

#include "Bench/Peers/Script.h"
#include "Bench/Peers/TestServer.h"

namespace Bench {

// "62100 count=3 value=60", "30300 raw", "30200 write NEWSERIAL", "help", "quit".
class TestServerProgram {
public:
    TestServerProgram(TestServer& server, double wait) : m_server(server), m_wait(wait) {}

    Reply Run(const std::vector<std::string>& words, const std::string& line);

    static std::string HelpText();

private:
    Reply Ask(const TestRequest& request, double wait);

    TestServer& m_server;
    double m_wait;
};

// Listens and runs the commands. Returns the exit status.
int RunTestServer(const PeerOptions& options);

}  // namespace Bench
