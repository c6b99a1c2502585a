// One run of the analyzer on the bench, from the empty folder to the last result. One thread.
#pragma once

#include <csignal>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Bench/Common/BenchedAnalyzer.h"
#include "Bench/Common/FileTail.h"
#include "Bench/Console/Display.h"
#include "Bench/Console/Indicator.h"
#include "Bench/Console/Options.h"
#include "Bench/Console/Records.h"

namespace Bench {

class Runner {
public:
    explicit Runner(const Options& options) : m_options(options) {}

    // Prepares the bench folder, starts the analyzer and shows what it does until the run is over. Returns the exit
    // status.
    int Run();

private:
    bool Prepare(std::string& error);
    bool SetLevels(std::string& error);
    bool MakeBoard(std::string& error);
    int Follow(const volatile std::sig_atomic_t& signal);
    void LetRun();  // for a moment

    void Poll();              // shows everything new
    void ShowIndicator();     // if it has changed
    void ShowActiveFaults();  // each once
    void ReadRecord(const DayFileTail::Line& line, std::vector<MeasurementRecord>& records);
    void ShowLogText(const std::string& text);
    void ShowResult(const MeasurementRecord& record);
    void ShowProgress();
    std::string StepProgress() const;

    double ResultTimeout() const;  // simulated seconds
    int Fail(const std::string& reason);
    Board& OnBoard() const { return m_analyzer.OnBoard(); }

    Options m_options;
    BenchedAnalyzer m_analyzer;
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
    double m_until = 0.0;  // simulated seconds, of a run in exact time
    std::set<std::string> m_shownFaults;
};

}  // namespace Bench
