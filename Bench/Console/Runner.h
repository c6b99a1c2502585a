// One run of the analyzer on the bench, from the empty folder to the last result. Used by one thread.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Bench/Board/Board.h"
#include "Bench/Console/Analyzer.h"
#include "Bench/Console/BenchFolder.h"
#include "Bench/Console/Display.h"
#include "Bench/Console/FileTail.h"
#include "Bench/Console/Indicator.h"
#include "Bench/Console/Options.h"
#include "Bench/Console/Records.h"
#include "Bench/Console/Settings.h"

namespace Bench {

// Where the parts of this build lie.
struct Places {
    std::string program;
    std::string library;
    std::string clips;
    std::string configuration;
    std::string bench;
};

class Runner {
public:
    Runner(const Options& options, const Places& places) : m_options(options), m_places(places) {}

    // Lays the bench, starts the analyzer and shows what it does until the run is over; the exit status.
    int Run();

private:
    bool Prepare(std::string& error);
    bool SetLevels(std::string& error);
    bool MakeBoard(std::string& error);
    int Follow();
    void Greet();

    void Look();            // at everything that has come since the last look
    void ShowIndicator();   // where it has changed
    void AnnounceFaults();  // that have become active
    void TakeRecord(const DayFileTail::Line& line, std::vector<MeasurementRecord>& records);
    void TakeLogText(const std::string& text);
    void ShowResult(const MeasurementRecord& record);
    void ShowProgress();
    std::string RunningStep() const;

    double SecondsAllowed() const;
    int Fail(const std::string& reason);

    Options m_options;
    Places m_places;
    AnalyzerSettings m_settings;
    BenchFolder m_folder;
    std::unique_ptr<Board> m_board;
    Analyzer m_analyzer;
    Display m_display;

    IndicatorWatch m_indicator;
    std::optional<DayFileTail> m_measurements;
    MeasurementReader m_reader;
    std::optional<FileTail> m_log;

    std::string m_step;            // display name of the running one; empty between cycles
    std::int64_t m_stepStart = 0;  // Unix time, by the analyzer's clock
    double m_lastResult = 0.0;     // simulated seconds
    double m_duty = 0.0;           // percent, of the last finished cycle
    std::uint64_t m_results = 0;
    std::set<std::string> m_announced;  // faults
};

}  // namespace Bench
