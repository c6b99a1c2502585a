// A test station's end of the test link: listens, sends commands by number and keeps the answers. It knows the frames
// on the wire and nothing of the analyzer. The analyzer leaves many commands unanswered, and an answer doesn't tell to
// which one it belongs: their order does. Operations from any thread.
#pragma once

#include <deque>
#include <memory>
#include <optional>

#include "Bench/Peers/LinkServer.h"
#include "Bench/Peers/TestFrames.h"

namespace Bench {

class TestServer final : public LinkServer {
public:
    static constexpr std::size_t AnswersKept = 256;  // not taken yet; with more the connection is cut

    // Null with a sentence in `error` where the port can't be had. Port 0: any that is free.
    static std::unique_ptr<TestServer> Listen(std::uint16_t port, std::string& error);
    ~TestServer() override { Stop(); }

    bool SendRequest(const TestRequest& request) { return Send(EncodeTestRequest(request)); }

    // The next answer, once it is there; nothing after that time.
    std::optional<TestAnswer> TakeAnswer(double seconds);
    std::size_t Waiting() const;  // answers that nobody has taken
    std::size_t AnswerCount() const;

    // Sends it and takes the next answer; what came before, late, is dropped.
    std::optional<TestAnswer> Ask(const TestRequest& request, double seconds);

private:
    TestServer() = default;

    void Begin() override { m_bytes.clear(); }
    bool Receive(std::string_view bytes, std::string& trouble) override;

    // With the lock held.
    std::string m_bytes;
    std::deque<TestAnswer> m_answers;
    std::size_t m_count = 0;
};

}  // namespace Bench
