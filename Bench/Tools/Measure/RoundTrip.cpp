#include "Bench/Tools/Measure/RoundTrip.h"

#include <chrono>

namespace Bench {

namespace {

constexpr int Message = 1;
constexpr int End = -1;

}  // namespace

void RoundTrip::Queue::Send(int message) {
    {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(message);
    }
    m_filled.notify_one();
}

int RoundTrip::Queue::Receive() {
    std::unique_lock lock(m_mutex);
    m_filled.wait(lock, [this] { return !m_messages.empty(); });
    const int message = m_messages.front();
    m_messages.pop_front();
    return message;
}

RoundTrip::RoundTrip() : m_other([this] { Answer(); }) {}

RoundTrip::~RoundTrip() {
    m_there.Send(End);
    m_other.join();
}

double RoundTrip::Once() {
    const auto start = std::chrono::steady_clock::now();
    m_there.Send(Message);
    m_back.Receive();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void RoundTrip::Answer() {
    while (m_there.Receive() != End) {
        m_back.Send(Message);
    }
}

}  // namespace Bench
