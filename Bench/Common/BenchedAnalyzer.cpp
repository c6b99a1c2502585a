#include "Bench/Common/BenchedAnalyzer.h"

namespace Bench {

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
    m_frontEnd = FrontEnd::Listen(0, error);
    m_station = TestServer::Listen(0, error);
    return m_frontEnd != nullptr && m_station != nullptr &&
           m_board->MapPort(FrontEnd::DefaultPort, m_frontEnd->Port()) &&
           m_board->MapPort(m_settings.testServerPort, m_station->Port());
}

bool BenchedAnalyzer::Start(std::string& error) {
    m_hasEnded = false;
    const bool exact = m_board->IsExact();
    const std::string library = (exact ? m_places.exactTimeLibrary + ":" : "") + m_places.library;
    return m_analyzer.Start({m_places.program, library, m_folder.Path(), Output(), exact}, error);
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
