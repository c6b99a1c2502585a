// The analyzer at work on a board of its own with a front end beside it, driven and watched from the outside, in time
// with the clock. One thread.
#pragma once

#include <memory>
#include <string>

#include "Bench/Board/Board.h"
#include "Bench/Console/Analyzer.h"
#include "Bench/Console/BenchFolder.h"
#include "Bench/Peers/FrontEnd.h"

namespace Bench {

struct RigPlaces {
    std::string program;
    std::string library;
    std::string clips;
    std::string bench;
};

class Rig {
public:
    // Starts the program with that configuration, hurries through its start, and returns when the front end is linked,
    // with the clock at its usual pace. Null with a sentence in `error` where that fails.
    static std::unique_ptr<Rig> Start(const RigPlaces& places, const std::string& configuration, std::string& error);
    // The same for a program that is started and left alone.
    static std::unique_ptr<Rig> StartBare(const RigPlaces& places, const std::string& configuration,
                                          std::string& error);

    pid_t Process() const { return m_analyzer.Program(); }
    Bench::Board& Board() const { return *m_board; }

    void Hurry(bool hurried);  // fifty times as fast, or in time with the clock

    bool Send(FrontEnd::Code code) { return m_frontEnd->SendCode(code); }
    // Seconds of the run at which every controller had come to IDLE_STATE since this was last awaited; below 0 where
    // they don't get there. Takes a configuration that logs at DEBUG_LOG_LEVEL.
    double WaitForIdle();
    // That the front end is linked once more than so many times.
    bool WaitForLink(std::size_t links) const;
    std::size_t Links() const { return m_frontEnd->Connections(); }

private:
    Rig() = default;

    bool Prepare(const RigPlaces& places, const std::string& configuration, std::string& error);
    bool AllIdle() const;

    BenchFolder m_folder;
    std::unique_ptr<Bench::Board> m_board;
    std::unique_ptr<FrontEnd> m_frontEnd;
    Analyzer m_analyzer;
};

// The text with every item of that name given that value.
std::string WithItem(const std::string& configuration, const std::string& name, const std::string& value);

}  // namespace Bench
