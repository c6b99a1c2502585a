// The analyzer on a board in a bench folder: what ./run, ./soak, ./sweep and ./measure have in common. One thread.
#pragma once

#include <memory>
#include <string>

#include "Bench/Board/Board.h"
#include "Bench/Common/Analyzer.h"
#include "Bench/Common/AnalyzerSettings.h"
#include "Bench/Common/BenchFolder.h"
#include "Bench/Peers/FrontEnd.h"
#include "Bench/Peers/TestServer.h"

namespace Bench {

struct Places {
    std::string program;
    std::string library;           // preloaded
    std::string exactTimeLibrary;  // preloaded before it for a run in exact time
    std::string clips;
    std::string configuration;
    std::string bench;
};

// Those of this build, with the bench folder build/NAME.
Places PlacesOfBuild(const std::string& name);

class BenchedAnalyzer {
public:
    // Reads the configuration, which may be changed in Settings().file before MakeBoard lays it into the folder. Each
    // returns false with the reason in `error`.
    bool ReadSettings(const Places& places, std::string& error);
    bool MakeBoard(const BoardSetup& setup, std::string& error);  // empties the folder
    bool MakePeers(std::string& error);                           // on free ports

    bool Start(std::string& error);
    // Exact time with peers: lets so many simulated seconds pass, and the peers take what comes. Returns earlier if the
    // program ends.
    void LetPass(double seconds);
    // As a supervisor restarts it: board, card and peers stay.
    bool Restart(std::string& error);
    void Stop() { m_analyzer.Stop(); }

    // Returns true with the reason once it has ended by itself.
    bool HasEnded(std::string& reason);
    int EndCode() const { return m_analyzer.EndCode(); }
    pid_t Process() const { return m_analyzer.Process(); }

    Board& OnBoard() const { return *m_board; }
    FrontEnd& AtFrontEnd() const { return *m_frontEnd; }
    TestServer& AtStation() const { return *m_station; }
    AnalyzerSettings& Settings() { return m_settings; }
    const AnalyzerSettings& Settings() const { return m_settings; }
    const std::string& Folder() const { return m_folder.Path(); }
    std::string Card() const { return m_folder.Card(); }
    std::string Output() const { return m_folder.Path() + "/output"; }
    std::string Log() const { return m_folder.Path() + "/log"; }

private:
    bool AwaitFirstPause();

    Places m_places;
    AnalyzerSettings m_settings;
    BenchFolder m_folder;
    std::unique_ptr<Board> m_board;
    std::unique_ptr<FrontEnd> m_frontEnd;
    std::unique_ptr<TestServer> m_station;
    Analyzer m_analyzer;
    bool m_hasEnded = false;
    std::string m_reason;
};

}  // namespace Bench
