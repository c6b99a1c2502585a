#include "Bench/Endurance/Flood.h"

#include <poll.h>

#include <algorithm>
#include <cstdio>

namespace Bench {

namespace {

// A random byte stream meets a reset every hundred reads or so, as a code. Without one for so long, it is asked for.
constexpr double SecondsWithoutReset = 900.0;
constexpr double SecondsOfReset = 120.0;
constexpr int FloodResetRequests = 10;

// Somewhat more than one read of the analyzer's.
constexpr std::uint32_t LongestPiece = 1200;

// Of every four pieces on the test link one is a whole frame from these, with random fields, so that what lies behind
// the numbers is met, too.
struct CommandRange {
    std::uint32_t first;
    std::uint32_t last;
};
constexpr CommandRange Commands[] = {
    {800, 860},     {10000, 10255}, {12000, 12255}, {13000, 13255}, {13300, 13363}, {30100, 30300},
    {30100, 30699}, {44100, 44599}, {62000, 62999}, {0, 65535},     {840, 840},     {44100, 44100},
};

}  // namespace

bool Flood::Run(const volatile int& stop, std::string& trouble) {
    m_start = Clock::now();
    while (m_elapsed < m_plan.seconds && stop == 0) {
        if (!Tick(trouble)) {
            return false;
        }
        poll(nullptr, 0, TickMilliseconds);
        m_elapsed = Elapsed();
    }
    if (m_plan.seconds >= 60.0 && m_series.Size() >= ReadingsToJudge && !m_series.IsFlat()) {
        trouble = "the program grew";
        return false;
    }
    return true;
}

bool Flood::Tick(std::string& trouble) {
    while (static_cast<double>(m_pieces) < Elapsed() * m_plan.rate) {
        SendToFrontEndLink();
        SendToTestLink();
        ++m_pieces;
    }
    while (m_subject.AtStation().TakeAnswer(0.0)) {
    }
    if (m_elapsed >= m_nextReading) {
        m_nextReading += ReadingDistance;
        if (const std::optional<Footprint> footprint = m_subject.Measure()) {
            m_series.Add(*footprint);
        }
        m_subject.CutTexts(LongestText);
    }
    return m_subject.StaysUp(trouble) && StillResets(trouble);
}

void Flood::SendToFrontEndLink() {
    const std::string piece = m_dice.Bytes(m_dice.Between(1, LongestPiece));
    m_frontEndBytes += m_subject.AtFrontEnd().Send(piece) ? piece.size() : 0;
}

void Flood::SendToTestLink() {
    const std::string piece = TestPiece();
    m_testBytes += m_subject.AtStation().Send(piece) ? piece.size() : 0;
}

std::string Flood::TestPiece() {
    if (!m_dice.OneIn(4)) {
        return m_dice.Bytes(m_dice.Between(1, LongestPiece));
    }
    const CommandRange& range = Commands[m_dice.Below(std::size(Commands))];
    TestRequest request;
    request.command = static_cast<std::uint16_t>(m_dice.Between(range.first, range.last));
    request.count = m_dice.Below(5);
    request.value = m_dice.OneIn(2) ? 0.0 : 0.5 + 60.0 * m_dice.Share();
    request.raw = m_dice.OneIn(2);
    if (m_dice.OneIn(2)) {
        request.data = m_dice.Bytes(m_dice.Below(200));
    }
    return EncodeTestRequest(request);
}

bool Flood::StillResets(std::string& trouble) {
    const double now = m_subject.OnBoard().Seconds();
    const std::size_t generations = m_subject.AtFrontEnd().Connections();
    if (generations != m_generations) {
        m_generations = generations;
        m_lastGeneration = now;
    }
    if (now - m_lastGeneration < SecondsWithoutReset || ResetOnRequest()) {
        return true;
    }
    trouble = "no reset on request";
    return false;
}

// The links are left alone meanwhile.
bool Flood::ResetOnRequest() {
    for (int request = 0; request < FloodResetRequests; ++request) {
        m_subject.AtFrontEnd().SendCode(FrontEnd::Reset);
        // At a high speed it is the machine that a reset takes its time of.
        const double realSeconds = std::max(5.0, SecondsOfReset / m_subject.OnBoard().Speed());
        if (m_subject.AtFrontEnd().WaitForConnection(m_generations + 1, realSeconds)) {
            return true;
        }
    }
    return false;
}

std::string Flood::Describe() const {
    char text[512];
    std::snprintf(text, sizeof text,
                  "flood: %.0f s, %.1f MB on the front end's link and %.1f MB on the test link, %zu connections of the "
                  "one and %zu of the other, %zu answers, %llu ends by a broken pipe; ",
                  m_elapsed, static_cast<double>(m_frontEndBytes) / 1e6, static_cast<double>(m_testBytes) / 1e6,
                  m_subject.AtFrontEnd().Connections(), m_subject.AtStation().Connections(),
                  m_subject.AtStation().AnswerCount(), static_cast<unsigned long long>(m_subject.BrokenPipes()));
    return text + m_series.Describe();
}

}  // namespace Bench
