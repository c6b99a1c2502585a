#include "Bench/Endurance/Subject.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace Bench {

bool Subject::Prepare(const SubjectPlaces& places, const BoardSetup& setup, const SettingList& settings,
                      std::string& error) {
    m_places = places;
    if (!ReadAnalyzerSettings(places.configuration, m_settings, error)) {
        return false;
    }
    for (const auto& [name, value] : settings) {
        if (!SetSetting(m_settings.text, name, value)) {
            error = "the configuration gives no " + name;
            return false;
        }
    }
    if (!m_folder.Take(places.bench, error) || !m_folder.Furnish(m_settings.text, places.clips, error)) {
        return false;
    }
    m_board = Board::Create(m_folder.Path(), setup, error);
    if (m_board == nullptr || !MakePeers(error)) {
        return false;
    }
    InstrumentSettings instrument = m_board->Settings();
    instrument.cellConstant = m_settings.cellConstant;
    m_board->SetSettings(instrument);
    return true;
}

bool Subject::MakePeers(std::string& error) {
    m_frontEnd = FrontEnd::Listen(0, error);
    m_station = TestServer::Listen(0, error);
    return m_frontEnd != nullptr && m_station != nullptr && m_board->MapPort(FrontEnd::DefaultPort, m_frontEnd->Port()) &&
           m_board->MapPort(m_settings.testServerPort, m_station->Port());
}

bool Subject::Start(std::string& error) {
    // On the instrument's 32 bits a block of 512 KiB or more always comes from the kernel and goes back to it. With 64
    // bits the limit would rise to 32 MiB with the first such block, and each arena would keep as much.
    static const int once = setenv("GLIBC_TUNABLES", "glibc.malloc.mmap_threshold=524288", 1);
    if (once != 0) {
        error = "no memory";
        return false;
    }
    m_end = End::Runs;
    return m_analyzer.Start(m_places.program, m_places.library, m_folder.Path(), Output(), error);
}

bool Subject::Restart(std::string& error) {
    m_analyzer.Stop();
    return Start(error);
}

Subject::End Subject::HasEnded(std::string& reason) {
    if (m_end == End::Runs && m_analyzer.HasEnded(m_reason)) {
        m_end = m_analyzer.EndCode() == 128 + SIGPIPE ? End::BrokenPipe : End::Other;
    }
    if (m_end != End::Runs) {
        reason = m_reason;
    }
    return m_end;
}

bool Subject::StaysUp(std::string& reason) {
    switch (HasEnded(reason)) {
        case End::Runs:
            return true;
        case End::BrokenPipe:
            ++m_brokenPipes;
            return Restart(reason);
        default:
            return false;
    }
}

void Subject::CutTexts(std::uintmax_t limit) const {
    for (const std::string& file : {Output(), Log()}) {
        std::error_code problem;
        if (std::filesystem::file_size(file, problem) > limit && !problem) {
            std::filesystem::resize_file(file, 0, problem);
        }
    }
}

}  // namespace Bench
