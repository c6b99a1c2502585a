#include "Bench/Peers/TestServerProgram.h"

#include <cstdio>

namespace Bench {

namespace {

constexpr std::uint64_t HighestCommand = 0xFFFF;
constexpr std::uint64_t HighestAddress = 0xFFFFFFFF;
constexpr double LongestWait = 1e6;

bool TakeCount(TestRequest& request, double& /*wait*/, const std::string& value) {
    std::uint64_t count = 0;
    const bool fits = ReadCount(value, HighestTestCount, count);
    request.count = static_cast<std::uint32_t>(count);
    return fits;
}

bool TakeValue(TestRequest& request, double& /*wait*/, const std::string& value) {
    return ReadDecimal(value, HighestTestValue, request.value);
}

bool TakeSource(TestRequest& request, double& /*wait*/, const std::string& value) {
    std::uint64_t address = 0;
    const bool fits = ReadCount(value, HighestAddress, address);
    request.source = static_cast<std::uint32_t>(address);
    return fits;
}

bool TakeDestination(TestRequest& request, double& /*wait*/, const std::string& value) {
    std::uint64_t address = 0;
    const bool fits = ReadCount(value, HighestAddress, address);
    request.destination = static_cast<std::uint32_t>(address);
    return fits;
}

bool TakeWait(TestRequest& /*request*/, double& wait, const std::string& value) {
    return ReadDecimal(value, LongestWait, wait);
}

constexpr struct {
    const char* name;
    bool (*take)(TestRequest& request, double& wait, const std::string& value);
    const char* wants;
} Settings[] = {
    {"count", TakeCount, "a whole number from 0 to 16777215"},
    {"value", TakeValue, "a number from 0 to 65535.9999"},
    {"source", TakeSource, "a whole number from 0 to 4294967295"},
    {"destination", TakeDestination, "a whole number from 0 to 4294967295"},
    {"wait", TakeWait, "seconds, from 0 to 1000000"},
};

// A sentence where the word isn't one; nothing where it is taken.
std::optional<std::string> TakeWord(TestRequest& request, double& wait, const std::string& word) {
    if (word == "raw") {
        request.raw = true;
        return std::nullopt;
    }
    const std::size_t equals = word.find('=');
    for (const auto& setting : Settings) {
        if (equals != std::string::npos && word.substr(0, equals) == setting.name) {
            const std::string value = word.substr(equals + 1);
            if (setting.take(request, wait, value)) {
                return std::nullopt;
            }
            return std::string(setting.name) + " does not take \"" + value + "\", but " + setting.wants;
        }
    }
    return "unknown word \"" + word + "\"; help lists what there is";
}

std::optional<std::string> TakeWords(TestRequest& request, double& wait, const std::vector<std::string>& words,
                                     const std::string& line) {
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "write") {
            request.data = RestBehind(line, i + 1);
            const bool hasData = !request.data->empty() && request.data->size() <= HighestTestCount;
            return hasData ? std::nullopt : std::optional<std::string>("write needs a text");
        }
        if (std::optional<std::string> refusal = TakeWord(request, wait, words[i])) {
            return refusal;
        }
    }
    return std::nullopt;
}

}  // namespace

Reply TestServerProgram::Run(const std::vector<std::string>& words, const std::string& line) {
    if (words[0] == "quit") {
        return {Reply::Quit, ""};
    }
    if (words[0] == "help") {
        return {Reply::Answered, HelpText()};
    }
    TestRequest request;
    std::uint64_t command = 0;
    if (!ReadCount(words[0], HighestCommand, command)) {
        return {Reply::Wrong, "\"" + words[0] + "\" is no command number, help or quit"};
    }
    request.command = static_cast<std::uint16_t>(command);
    double wait = m_wait;
    if (const std::optional<std::string> refusal = TakeWords(request, wait, words, line)) {
        return {Reply::Wrong, *refusal};
    }
    return Ask(request, wait);
}

Reply TestServerProgram::Ask(const TestRequest& request, double wait) {
    const std::string start = std::to_string(request.command) + ": ";
    if (!m_server.WaitForConnection(m_wait)) {
        return {Reply::Failed, start + "no analyzer connected in " + SecondsText(m_wait)};
    }
    const std::optional<TestAnswer> answer = m_server.Ask(request, wait);
    if (!answer) {
        const std::string trouble = m_server.Trouble();
        return {Reply::Failed, start + (trouble.empty() ? "no answer in " + SecondsText(wait) : "cut off: " + trouble)};
    }
    return {answer->crcFits ? Reply::Answered : Reply::Failed, start + DescribeTestAnswer(request, *answer)};
}

std::string TestServerProgram::HelpText() {
    return R"(NUMBER [raw] [count=N] [value=X] [source=N] [destination=N] [wait=SECONDS] [write TEXT]
  sends the command of that number and shows the answer. count: how often it is to be answered; value: most often
  seconds; raw: the answer as bytes; write: the rest of the line goes with it to be stored
  800 stop a timed sequence    810 run    820 idle    830 run    840 state    850 shut down    860 reset
  10000-10255 analog inputs    12000-12255, 13000-13255 digital pins    13300-13363 PWM
  30100 device    30200 serial number    30300 hardware address    44100 test readings    62100 measure
help
quit)";
}

int RunTestServer(const PeerOptions& options) {
    std::string error;
    const std::unique_ptr<TestServer> server = TestServer::Listen(options.port, error);
    if (!server) {
        std::fprintf(stderr, "run: --test-server: %s\n", error.c_str());
        return PeerWrongCommand;
    }
    TestServerProgram program(*server, options.wait);
    return RunScript(options, "test> ", [&program](const std::vector<std::string>& words, const std::string& line) {
        return program.Run(words, line);
    });
}

}  // namespace Bench
