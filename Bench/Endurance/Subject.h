// The very program that ships, on a board in a bench folder, with a front end and a test station at its two links. One
// thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Bench/Board/Board.h"
#include "Bench/Console/Analyzer.h"
#include "Bench/Console/BenchFolder.h"
#include "Bench/Console/Settings.h"
#include "Bench/Endurance/Footprint.h"
#include "Bench/Peers/FrontEnd.h"
#include "Bench/Peers/TestServer.h"

namespace Bench {

struct SubjectPlaces {
    std::string program;
    std::string library;  // what is preloaded
    std::string clips;
    std::string configuration;
    std::string bench;
};

using SettingList = std::vector<std::pair<std::string, std::string>>;  // items of the configuration, by name

// The beat of a long run, in real time, and how much of what the analyzer says is kept.
inline constexpr int TickMilliseconds = 10;
inline constexpr double ReadingDistance = 1.0;  // of footprints, in seconds
inline constexpr std::uintmax_t LongestText = 64U << 20U;

class Subject {
public:
    enum class End { Runs, BrokenPipe, Other };

    // An empty folder with a fresh board and both peers on ports of their own. False with a sentence in `error`.
    bool Prepare(const SubjectPlaces& places, const BoardSetup& setup, const SettingList& settings, std::string& error);

    bool Start(std::string& error);
    // As the service's supervisor does it: the program alone is new, the board, the card and the peers stay.
    bool Restart(std::string& error);
    void Stop() { m_analyzer.Stop(); }

    // A front end that goes away while a frame is written ends the program by a broken pipe, as it has to be; any other
    // end is told in `reason`.
    End HasEnded(std::string& reason);
    int EndCode() const { return m_analyzer.EndCode(); }  // as a shell tells it, once it has ended
    // Runs, or runs again after a broken pipe; else false with the reason.
    bool StaysUp(std::string& reason);
    std::uint64_t BrokenPipes() const { return m_brokenPipes; }  // that it was started again for
    // Of the program as it runs now.
    std::optional<Footprint> Measure() const { return ReadFootprint(m_analyzer.Program()); }
    pid_t Program() const { return m_analyzer.Program(); }

    // What it prints and logs, cut once it has grown beyond that many bytes.
    void CutTexts(std::uintmax_t limit) const;

    Board& OnBoard() const { return *m_board; }
    FrontEnd& AtFrontEnd() const { return *m_frontEnd; }
    TestServer& AtStation() const { return *m_station; }
    const BenchFolder& Folder() const { return m_folder; }
    const AnalyzerSettings& Settings() const { return m_settings; }
    std::string Output() const { return m_folder.Path() + "/output"; }
    std::string Log() const { return m_folder.Path() + "/log"; }

private:
    bool MakePeers(std::string& error);

    SubjectPlaces m_places;
    AnalyzerSettings m_settings;
    BenchFolder m_folder;
    std::unique_ptr<Board> m_board;
    std::unique_ptr<FrontEnd> m_frontEnd;
    std::unique_ptr<TestServer> m_station;
    Analyzer m_analyzer;
    End m_end = End::Runs;
    std::string m_reason;
    std::uint64_t m_brokenPipes = 0;
};

}  // namespace Bench
