#include "Bench/Peers/TestServer.h"

namespace Bench {

std::unique_ptr<TestServer> TestServer::Listen(std::uint16_t port, std::string& error) {
    std::unique_ptr<TestServer> server(new TestServer);
    if (!server->LinkServer::Listen(port, error)) {
        return nullptr;
    }
    server->Start();
    return server;
}

std::unique_ptr<TestServer> TestServer::On(std::unique_ptr<PeerWire> wire) {
    std::unique_ptr<TestServer> server(new TestServer);
    server->Use(std::move(wire));
    return server;
}

std::optional<TestAnswer> TestServer::TakeAnswer(double seconds) {
    std::optional<TestAnswer> answer;
    WaitFor(seconds, [this, &answer] {
        if (!m_answers.empty()) {
            answer = std::move(m_answers.front());
            m_answers.pop_front();
        }
        return answer.has_value();
    });
    return answer;
}

std::size_t TestServer::Waiting() const {
    const std::lock_guard lock(m_mutex);
    return m_answers.size();
}

std::size_t TestServer::AnswerCount() const {
    const std::lock_guard lock(m_mutex);
    return m_count;
}

std::optional<TestAnswer> TestServer::Ask(const TestRequest& request, double seconds) {
    {
        const std::lock_guard lock(m_mutex);
        m_answers.clear();
    }
    return SendRequest(request) ? TakeAnswer(seconds) : std::nullopt;
}

bool TestServer::Receive(std::string_view bytes, std::string& reason) {
    m_bytes += bytes;
    while (std::optional<TestAnswer> answer = TakeTestAnswer(m_bytes, reason)) {
        m_answers.push_back(std::move(*answer));
        ++m_count;
    }
    if (m_answers.size() > AnswersKept) {
        reason = "more than " + std::to_string(AnswersKept) + " answers without a request";
        m_answers.clear();
    }
    return reason.empty();
}

}  // namespace Bench
