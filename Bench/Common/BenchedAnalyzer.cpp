#include "Bench/Common/BenchedAnalyzer.h"

#include "Bench/Common/Text.h"

namespace Bench {

namespace {

constexpr double Patience = 0.05;  // real seconds between two looks at the process

class BoardWire final : public PeerWire {
public:
    BoardWire(Board& board, int port) : m_board(board), m_port(port) { m_board.LayWire(port); }

    View Take() override {
        WireView view = m_board.TakeFromWire(m_port);
        return {view.connections, view.connected, std::move(view.bytes)};
    }
    bool Send(std::string_view bytes) override { return m_board.GiveToWire(m_port, bytes); }
    void End(bool abort) override { m_board.EndWire(m_port, abort); }

private:
    Board& m_board;
    const int m_port;
};

}  // namespace

Places PlacesOfBuild(const std::string& name) {
    return {BENCH_PROGRAM,
            BENCH_LIBRARY,
            BENCH_EXACT_TIME_LIBRARY,
            BENCH_CLIPS,
            BENCH_SOURCES "/configuration/analyzer.conf.xml",
            BENCH_SOURCES "/build/" + name};
}

bool BenchedAnalyzer::ReadSettings(const Places& places, std::string& error) {
    m_places = places;
    return ReadAnalyzerSettings(places.configuration, m_settings, error);
}

bool BenchedAnalyzer::MakeBoard(const BoardSetup& setup, std::string& error) {
    if (!m_folder.Take(m_places.bench, error) || !m_folder.Fill(m_settings.file.Text(), m_places.clips, error)) {
        return false;
    }
    m_board = Board::Create(m_folder.Path(), setup, error);
    if (m_board == nullptr) {
        return false;
    }
    InstrumentSettings instrument = m_board->Settings();
    instrument.cellConstant = m_settings.cellConstant;
    m_board->SetSettings(instrument);
    return true;
}

bool BenchedAnalyzer::MakePeers(std::string& error) {
    if (m_board->IsExact()) {
        m_frontEnd = FrontEnd::On(std::make_unique<BoardWire>(*m_board, FrontEnd::DefaultPort));
        m_station = TestServer::On(std::make_unique<BoardWire>(*m_board, m_settings.testServerPort));
        return true;
    }
    m_frontEnd = FrontEnd::Listen(0, error);
    m_station = TestServer::Listen(0, error);
    return m_frontEnd != nullptr && m_station != nullptr &&
           m_board->MapPort(FrontEnd::DefaultPort, m_frontEnd->Port()) &&
           m_board->MapPort(m_settings.testServerPort, m_station->Port());
}

bool BenchedAnalyzer::Start(std::string& error) {
    m_hasEnded = false;
    m_board->BeginProgram();
    const bool exact = m_board->IsExact();
    const std::string library = (exact ? m_places.exactTimeLibrary + ":" : "") + m_places.library;
    return m_analyzer.Start({m_places.program, library, m_folder.Path(), Output(), exact}, error) &&
           (!exact || AwaitFirstPause());
}

// From here on the board's clock is read in pauses alone. A program that ends before is found by HasEnded.
bool BenchedAnalyzer::AwaitFirstPause() {
    std::string reason;
    while (!m_board->RunUntil(m_board->Seconds(), Patience) && !HasEnded(reason)) {
    }
    return true;
}

void BenchedAnalyzer::LetPass(double seconds) {
    constexpr double Rounding = 1e-6;
    const double end = m_board->Seconds() + seconds;
    std::string reason;
    while (m_board->Seconds() + Rounding < end) {
        const bool paused = m_board->RunUntil(end, Patience);
        if (HasEnded(reason)) {
            return;
        }
        if (!paused) {
            continue;
        }
        m_frontEnd->Poll();
        m_station->Poll();
        if (m_board->Exact().over) {
            SleepMilliseconds(1);  // the process is about to end
        }
    }
}

bool BenchedAnalyzer::Restart(std::string& error) {
    m_analyzer.Stop();
    return Start(error);
}

bool BenchedAnalyzer::HasEnded(std::string& reason) {
    m_hasEnded = m_hasEnded || m_analyzer.HasEnded(m_reason);
    if (m_hasEnded) {
        reason = m_reason;
    }
    return m_hasEnded;
}

}  // namespace Bench
