#include "Bench/Tools/Endurance/Flood.h"

#include <algorithm>

#include "Bench/Common/Text.h"

namespace Bench {

namespace {

// Real time.
constexpr int TickMilliseconds = 10;
constexpr double FootprintSeconds = 1.0;

// Random bytes contain the code of a reset about once in a hundred reads. After so long without one, it is requested.
constexpr double SecondsWithoutReset = 900.0;
constexpr double SecondsOfReset = 120.0;
constexpr int FloodResetRequests = 10;

// More than one read of the analyzer takes.
constexpr std::uint32_t MaxPiece = 1200;

// One in four pieces on the test link is a whole frame with one of these commands and random fields.
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
        SleepMilliseconds(TickMilliseconds);
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
    while (m_system.AtStation().TakeAnswer(0.0)) {
    }
    if (m_elapsed >= m_nextReading) {
        m_nextReading += FootprintSeconds;
        if (const std::optional<Footprint> footprint = m_system.Measure()) {
            m_series.Add(*footprint);
        }
        m_system.LimitOutput(MaxOutputBytes);
    }
    return m_system.StaysUp(trouble) && StillResets(trouble);
}

void Flood::SendToFrontEndLink() {
    const std::string piece = m_random.Bytes(m_random.Between(1, MaxPiece));
    m_frontEndBytes += m_system.AtFrontEnd().Send(piece) ? piece.size() : 0;
}

void Flood::SendToTestLink() {
    const std::string piece = TestPiece();
    m_testBytes += m_system.AtStation().Send(piece) ? piece.size() : 0;
}

std::string Flood::TestPiece() {
    if (!m_random.OneIn(4)) {
        return m_random.Bytes(m_random.Between(1, MaxPiece));
    }
    const CommandRange& range = Commands[m_random.Below(std::size(Commands))];
    TestRequest request;
    request.command = static_cast<std::uint16_t>(m_random.Between(range.first, range.last));
    request.count = m_random.Below(5);
    request.value = m_random.OneIn(2) ? 0.0 : 0.5 + 60.0 * m_random.Share();
    request.raw = m_random.OneIn(2);
    if (m_random.OneIn(2)) {
        request.data = m_random.Bytes(m_random.Below(200));
    }
    return EncodeTestRequest(request);
}

bool Flood::StillResets(std::string& trouble) {
    const double now = m_system.OnBoard().Seconds();
    const std::size_t generations = m_system.AtFrontEnd().Connections();
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

// Sends nothing else meanwhile.
bool Flood::ResetOnRequest() {
    for (int request = 0; request < FloodResetRequests; ++request) {
        m_system.AtFrontEnd().SendCode(FrontEnd::Reset);
        // At a high speed a reset takes mainly real time.
        const double realSeconds = std::max(5.0, SecondsOfReset / m_system.OnBoard().Speed());
        if (m_system.AtFrontEnd().WaitForConnection(m_generations + 1, realSeconds)) {
            return true;
        }
    }
    return false;
}

std::string Flood::Describe() const {
    return Format(
               "flood: %.0f s, %.1f MB on the front end's link and %.1f MB on the test link, %zu connections of the "
               "one and %zu of the other, %zu answers, %llu ends by a broken pipe; ",
               m_elapsed, static_cast<double>(m_frontEndBytes) / 1e6, static_cast<double>(m_testBytes) / 1e6,
               m_system.AtFrontEnd().Connections(), m_system.AtStation().Connections(),
               m_system.AtStation().AnswerCount(), static_cast<unsigned long long>(m_system.BrokenPipes())) +
           m_series.Describe();
}

}  // namespace Bench
