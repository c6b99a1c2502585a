#include "Bench/Peers/TestServerProgram.h"

namespace Bench {

namespace {

constexpr std::uint32_t MaxAddress = 0xFFFFFFFF;

// The settings of a request, NAME=VALUE. `take` returns false for an invalid value.
constexpr struct {
    const char* name;
    bool (*take)(TestRequest& request, double& wait, const std::string& value);
    const char* expected;
} Settings[] = {
    {"count",
     [](TestRequest& request, double&, const std::string& value) {
         return ReadNumber(value, std::uint32_t{0}, MaxTestCount, request.count);
     },
     "a whole number from 0 to 16777215"},
    {"value",
     [](TestRequest& request, double&, const std::string& value) {
         return ReadNumber(value, 0.0, MaxTestValue, request.value);
     },
     "a number from 0 to 65535.9999"},
    {"source",
     [](TestRequest& request, double&, const std::string& value) {
         return ReadNumber(value, std::uint32_t{0}, MaxAddress, request.source);
     },
     "a whole number from 0 to 4294967295"},
    {"destination",
     [](TestRequest& request, double&, const std::string& value) {
         return ReadNumber(value, std::uint32_t{0}, MaxAddress, request.destination);
     },
     "a whole number from 0 to 4294967295"},
    {"wait", [](TestRequest&, double& wait, const std::string& value) { return ReadNumber(value, 0.0, 1e6, wait); },
     "seconds from 0 to 1000000"},
};

// Takes one word of the line. Returns the reason if it is wrong.
std::optional<std::string> TakeWord(TestRequest& request, double& wait, const std::string& word) {
    if (word == "raw") {
        request.raw = true;
        return std::nullopt;
    }
    const std::size_t equals = word.find('=');
    for (const auto& setting : Settings) {
        if (equals != std::string::npos && word.substr(0, equals) == setting.name) {
            const std::string value = word.substr(equals + 1);
            return setting.take(request, wait, value) ? std::nullopt
                                                      : std::optional(word.substr(0, equals) + ": invalid value \"" +
                                                                      value + "\" (expected " + setting.expected + ")");
        }
    }
    return "\"" + word + "\": unknown word (help lists all)";
}

std::optional<std::string> TakeWords(TestRequest& request, double& wait, const std::vector<std::string>& words,
                                     const std::string& line) {
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "write") {
            request.data = RestAfter(line, i + 1);
            const bool hasData = !request.data->empty() && request.data->size() <= MaxTestCount;
            return hasData ? std::nullopt : std::optional<std::string>("write: no text");
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
    if (!ReadNumber(words[0], std::uint16_t{0}, std::uint16_t{0xFFFF}, request.command)) {
        return {Reply::Wrong, "\"" + words[0] + "\": unknown command (expected a number, help or quit)"};
    }
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
        const std::string reason = m_server.CutReason();
        return {Reply::Failed, start + (reason.empty() ? "no answer in " + SecondsText(wait) : "cut off: " + reason)};
    }
    return {answer->crcFits ? Reply::Answered : Reply::Failed, start + DescribeTestAnswer(request, *answer)};
}

std::string TestServerProgram::HelpText() {
    return R"(NUMBER [raw] [count=N] [value=X] [source=N] [destination=N] [wait=SECONDS]
       [write TEXT]
  Sends the command with this number and prints the answer.
  count: number of answers; value: usually seconds; raw: the answer as bytes;
  write: sends the rest of the line, to be stored
  800 stop a timed sequence    810 run      820 idle    830 run
  840 state                    850 shut down            860 reset
  10000-10255 analog inputs    12000-12255, 13000-13255 digital pins
  13300-13363 PWM              30100 device             30200 serial number
  30300 hardware address       44100 test readings      62100 measure
help   prints this list
quit)";
}

int RunTestServer(const PeerOptions& options) {
    std::string error;
    const std::unique_ptr<TestServer> server = TestServer::Listen(options.port, error);
    if (!server) {
        return Refuse("run", "--test-server: " + error);
    }
    TestServerProgram program(*server, options.wait);
    return RunScript(options, "test> ", [&program](const std::vector<std::string>& words, const std::string& line) {
        return program.Run(words, line);
    });
}

}  // namespace Bench
