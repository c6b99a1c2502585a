#include "Bench/Peers/FrontEndProgram.h"

#include <unistd.h>

#include "Bench/Peers/FrontEndPanel.h"
#include "Bench/Peers/TestFrames.h"

namespace Bench {

namespace {

constexpr char EnteredIdle[] = "-1";
constexpr char EnteredRunning[] = "-2";
constexpr std::uint32_t MaxCode = 0x7FFFFFFF;

std::string DescribeFrame(const FrontEndFrame& frame) {
    std::string text;
    for (const auto& [name, value] : frame.values) {
        text += (text.empty() ? "" : " ") + Printable(name) + " \"" + Printable(value) + "\"";
    }
    return text;
}

}  // namespace

Reply FrontEndProgram::Run(const std::vector<std::string>& words, const std::string& line) {
    const std::string& name = words[0];
    if (name == "quit") {
        return {Reply::Quit, ""};
    }
    if (name == "help") {
        return {Reply::Answered, HelpText()};
    }
    if (name == "idle") {
        return Enter(name, FrontEnd::Idle, EnteredIdle);
    }
    if (name == "running") {
        return Enter(name, FrontEnd::Running, EnteredRunning);
    }
    if (name == "reset") {
        return Reset();
    }
    if (name == "prime") {
        return SendAndForget(name, std::to_string(FrontEnd::Prime) + "~");
    }
    std::uint32_t code = 0;
    if (name == "code" && words.size() == 2 && ReadNumber(words[1], std::uint32_t{0}, MaxCode, code)) {
        return SendAndForget(name + " " + words[1], words[1] + "~");
    }
    if (name == "text" && words.size() > 1) {
        return SendAndForget(name, RestAfter(line, 1));
    }
    if (name == "wait" && words.size() > 1) {
        return WaitFor(words, line);
    }
    if (name == "show") {
        return {Reply::Answered, "show: " + DescribeScreen(m_frontEnd.Screen())};
    }
    return {Reply::Wrong, "\"" + line + "\": unknown command (help lists all)"};
}

// An analyzer that is already in the state sends nothing, so its last report of that state is the answer.
Reply FrontEndProgram::Enter(const std::string& state, int code, const std::string& command) {
    if (!m_frontEnd.WaitForConnection(m_wait)) {
        return Unanswered(state);
    }
    if (m_frontEnd.Screen().command == command) {
        return {Reply::Answered, state + ": already"};
    }
    m_seen = m_frontEnd.FrameCount();
    if (!m_frontEnd.SendCode(code) || !m_frontEnd.WaitForValue("CMD", command, m_seen, m_wait)) {
        return Unanswered(state);
    }
    return {Reply::Answered, state + ": entered"};
}

Reply FrontEndProgram::Reset() {
    if (!m_frontEnd.WaitForConnection(m_wait)) {
        return Unanswered("reset");
    }
    const std::size_t connections = m_frontEnd.Connections();
    if (!m_frontEnd.SendCode(FrontEnd::Reset) || !m_frontEnd.WaitForConnection(connections + 1, m_wait)) {
        return Unanswered("reset");
    }
    m_seen = m_frontEnd.FrameCount();
    return {Reply::Answered, "reset: connected again"};
}

Reply FrontEndProgram::SendAndForget(const std::string& name, const std::string& bytes) {
    if (!m_frontEnd.WaitForConnection(m_wait) || !m_frontEnd.Send(bytes)) {
        return Unanswered(name);
    }
    return {Reply::Answered, name + ": sent"};
}

Reply FrontEndProgram::WaitFor(const std::vector<std::string>& words, const std::string& line) {
    std::optional<std::string> value;
    if (words.size() > 2) {
        value = RestAfter(line, 2);
    }
    const std::optional<FrontEndFrame> frame = m_frontEnd.WaitForValue(words[1], value, m_seen, m_wait);
    return frame ? Reply{Reply::Answered, "wait: " + DescribeFrame(*frame)} : Unanswered("wait");
}

Reply FrontEndProgram::Unanswered(const std::string& name) const {
    const std::string reason = m_frontEnd.CutReason();
    if (!reason.empty()) {
        return {Reply::Failed, name + ": cut off: " + reason};
    }
    return {Reply::Failed, name + (m_frontEnd.IsConnected() ? ": no answer in " : ": no analyzer connected in ") +
                               SecondsText(m_wait)};
}

std::string FrontEndProgram::HelpText() {
    return R"(idle               enter idle, and wait until the analyzer reports it
running            the same for running
reset              reset the system, and wait until it is connected again
prime              prime the system; there is no answer
code N             send this code
text TEXT          send this text unchanged
wait NAME [VALUE]  wait for the next frame with this name (ChlorineValue,
                   DateValue, InstrumentStatus, SoftwareVersion, CMD) and value
show               print what the front end shows now
help               print this list
quit)";
}

std::string StateOf(const Screen& screen) {
    if (screen.command == EnteredIdle) {
        return "idle";
    }
    return screen.command == EnteredRunning ? "running" : "unknown";
}

std::string DateOf(const Screen& screen) {
    std::string date = screen.date.substr(screen.date.rfind('@', 0) == 0 ? 1 : 0);
    while (!date.empty() && date.back() == '\n') {
        date.pop_back();
    }
    return date;
}

std::string DescribeScreen(const Screen& screen) {
    return "value \"" + Printable(screen.chlorine) + "\" date \"" + Printable(DateOf(screen)) + "\" status \"" +
           Printable(screen.status) + "\" version \"" + Printable(screen.version) + "\" state " + StateOf(screen);
}

int RunFrontEnd(const PeerOptions& options) {
    std::string error;
    const std::unique_ptr<FrontEnd> frontEnd = FrontEnd::Listen(options.port, error);
    if (!frontEnd) {
        return Refuse("run", "--frontend: " + error);
    }
    if (options.script.empty() && isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {
        return RunFrontEndPanel(*frontEnd);
    }
    FrontEndProgram program(*frontEnd, options.wait);
    return RunScript(options, "front end> ",
                     [&program](const std::vector<std::string>& words, const std::string& line) {
                         return program.Run(words, line);
                     });
}

}  // namespace Bench
