// The test station's end of the test link: it listens, sends commands by number and keeps the answers. It depends on
// the protocol alone and on no code of the analyzer. The analyzer does not answer every command, and an answer does not
// name its command: match them by order. Operations from any thread.
#pragma once

#include <deque>
#include <memory>
#include <optional>

#include "Bench/Peers/LinkServer.h"
#include "Bench/Peers/TestFrames.h"

namespace Bench {

class TestServer final : public LinkServer {
public:
    static constexpr std::size_t AnswersKept = 256;  // not taken yet; more cut the connection

    // Returns null with the reason in `error` if the port is not available. Port 0: any free port.
    static std::unique_ptr<TestServer> Listen(std::uint16_t port, std::string& error);
    static std::unique_ptr<TestServer> On(std::unique_ptr<PeerWire> wire);
    ~TestServer() override { Stop(); }

    bool SendRequest(const TestRequest& request) { return Send(EncodeTestRequest(request)); }

    // Waits for the next answer. Nothing on timeout.
    std::optional<TestAnswer> TakeAnswer(double seconds);
    std::size_t Waiting() const;  // answers not taken yet
    std::size_t AnswerCount() const;

    // Sends the request and takes the next answer. Earlier answers that arrived late are dropped.
    std::optional<TestAnswer> Ask(const TestRequest& request, double seconds);

private:
    TestServer() = default;

    void Begin() override { m_bytes.clear(); }
    bool Receive(std::string_view bytes, std::string& reason) override;

    // With the lock held.
    std::string m_bytes;
    std::deque<TestAnswer> m_answers;
    std::size_t m_count = 0;
};

}  // namespace Bench
