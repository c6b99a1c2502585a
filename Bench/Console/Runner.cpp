#include "Bench/Console/Runner.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "Bench/Common/Program.h"
#include "Bench/Common/Text.h"
#include "System/Messages/StepType.h"

namespace Bench {

namespace {

// Simulated seconds before the first cycle: the automatic start waits, primes and settles.
constexpr double StartSeconds = 120.0;
// Simulated seconds of a cycle in addition to its steps: homing and the LED adjustment.
constexpr double CycleExtraSeconds = 60.0;
constexpr double TimesExpected = 3.0;
constexpr int PollMilliseconds = 50;
constexpr double DefaultSpeed = 20.0;
constexpr double ExactSlice = 0.5;               // simulated seconds between two looks at the board
constexpr std::int64_t ExactStart = 1767225600;  // 2026-01-01 00:00:00 UTC

std::string TimeOfDay(std::int64_t wallNanoSeconds) {
    const auto seconds = static_cast<std::time_t>(wallNanoSeconds / 1000000000);
    std::tm date{};
    gmtime_r(&seconds, &date);
    char text[16];
    std::strftime(text, sizeof(text), "%H:%M:%S", &date);
    return text;
}

std::string Duration(double seconds) {
    const auto whole = static_cast<long long>(seconds);
    return whole < 60 ? Format("%lld s", whole) : Format("%lld min %lld s", whole / 60, whole % 60);
}

std::string InternalName(const std::string& displayName) {
    for (int step = 0; step < StepCount; ++step) {
        if (GetStepDisplayName(static_cast<StepType>(step)) == displayName) {
            return GetStepInternalName(static_cast<StepType>(step)).Text();
        }
    }
    return "";
}

}  // namespace

int Runner::Run() {
    std::string error;
    const volatile std::sig_atomic_t& signal = CatchSignals();
    if (!Prepare(error)) {
        return Refuse("run", error);
    }
    m_display.Line(Format("The analyzer on the bench: %.4g mg/l chlorine in the water, cell constant %.6g, ",
                          m_options.chlorine, m_analyzer.Settings().cellConstant) +
                   (m_options.exact
                        ? Format("exact time, seed %u", m_options.seed)
                        : Format("%.4g times as fast as the clock", m_options.speed.value_or(DefaultSpeed))));
    if (!m_analyzer.Start(error)) {
        return Fail(error);
    }
    const int status = Follow(signal);
    m_display.EndProgress();
    m_analyzer.Stop();
    m_display.Quiet(Format("%llu %s in %s of simulated time; the run's files stay in %s",
                           static_cast<unsigned long long>(m_results), m_results == 1 ? "result" : "results",
                           Duration(OnBoard().Seconds()).c_str(), m_analyzer.Folder().c_str()));
    return status;
}

bool Runner::Prepare(std::string& error) {
    Places places = PlacesOfBuild("bench");
    places.configuration = m_options.config.empty() ? places.configuration : m_options.config;
    places.bench = m_options.bench.empty() ? places.bench : m_options.bench;
    places.program = m_options.program.empty() ? places.program : m_options.program;
    return m_analyzer.ReadSettings(places, error) && SetLevels(error) && MakeBoard(error);
}

bool Runner::SetLevels(std::string& error) {
    const struct {
        const char* option;
        const char* name;
        const std::string& level;
    } levels[] = {{"--alert", "AlertLevel", m_options.alertLevel}, {"--alarm", "AlarmLevel", m_options.alarmLevel}};
    for (const auto& row : levels) {
        if (!row.level.empty() && !m_analyzer.Settings().file.Set(row.name, row.level)) {
            error = std::string(row.option) + ": the configuration gives no " + row.name;
            return false;
        }
    }
    return true;
}

bool Runner::MakeBoard(std::string& error) {
    BoardSetup setup;
    setup.speed = m_options.speed.value_or(DefaultSpeed);
    setup.startSeconds = m_options.start.value_or(m_options.exact ? ExactStart : std::time(nullptr));
    if (m_options.exact) {
        setup.exact.emplace().seed = m_options.seed;
    }
    setup.seed = m_options.seed;
    setup.noise = m_options.noise;
    if (!m_analyzer.MakeBoard(setup, error)) {
        return false;
    }
    Board& board = OnBoard();
    board.SetLoopbackOpen(!m_options.exact);  // for other front ends on this machine
    if (m_options.frontEndPort) {
        board.MapPort(FrontEnd::DefaultPort, *m_options.frontEndPort);
    }
    if (m_options.testServerPort) {
        board.MapPort(m_analyzer.Settings().testServerPort, *m_options.testServerPort);
    }
    InstrumentSettings instrument = board.Settings();
    instrument.chlorine = m_options.chlorine;
    board.SetSettings(instrument);
    for (const std::string& fault : m_options.faults) {
        if (!board.SetFault(fault, error)) {
            error.insert(0, "--fault " + fault + ": ");
            return false;
        }
    }
    m_measurements.emplace(m_analyzer.Card(), m_analyzer.Settings().measurementFileName);
    m_log.emplace(m_analyzer.Log());
    return true;
}

int Runner::Follow(const volatile std::sig_atomic_t& signal) {
    while (true) {
        Poll();
        if (m_options.cycles && m_results >= *m_options.cycles) {
            return ExitSuccess;
        }
        if (signal != 0) {
            return ExitSignalBase + signal;
        }
        std::string reason;
        if (m_analyzer.HasEnded(reason)) {
            Poll();
            return Fail(reason + "; its output is in " + m_analyzer.Output());
        }
        const double timeout = ResultTimeout();
        if (OnBoard().Seconds() - m_lastResult > timeout) {
            const char* card = OnBoard().Card().inserted ? "" : ", and the card with its records is out";
            return Fail("no result in " + Duration(timeout) + " of simulated time" + card);
        }
        ShowProgress();
        LetRun();
    }
}

void Runner::LetRun() {
    if (!m_options.exact) {
        SleepMilliseconds(PollMilliseconds);
    } else if (OnBoard().Exact().over) {
        SleepMilliseconds(1);  // its process is about to end
    } else if (OnBoard().RunUntil(m_until)) {
        m_until += ExactSlice;
    }
}

double Runner::ResultTimeout() const {
    const double expected =
        m_analyzer.Settings().cycleSeconds + CycleExtraSeconds + (m_results == 0 ? StartSeconds : 0.0);
    return TimesExpected * expected;
}

int Runner::Fail(const std::string& reason) {
    m_display.EndProgress();
    std::fprintf(stderr, "run: %s\n", reason.c_str());
    return ExitFailure;
}

void Runner::ShowIndicator() {
    if (const std::optional<IndicatorView> view = m_indicator.Poll(OnBoard())) {
        m_display.Indicator(IndicatorLine(*view));
    }
}

void Runner::Poll() {
    ShowActiveFaults();
    ShowIndicator();
    // Records first: the status texts of a cycle are in the log before its record is on the card.
    std::vector<MeasurementRecord> records;
    for (const DayFileTail::Line& line : m_measurements->Read()) {
        ReadRecord(line, records);
    }
    for (const std::string& line : m_log->Read()) {
        ShowLogText(TextOfLogRecord(line).value_or(line));
    }
    for (const MeasurementRecord& record : records) {
        if (!m_options.cycles || m_results < *m_options.cycles) {
            ShowResult(record);
        }
    }
}

void Runner::ShowActiveFaults() {
    for (const ActiveFault& fault : OnBoard().Faults()) {
        if (fault.active && m_shownFaults.insert(fault.text).second) {
            m_display.Warning(TimeOfDay(OnBoard().WallNanoSeconds()) + "  fault " + fault.text);
        }
    }
}

void Runner::ReadRecord(const DayFileTail::Line& line, std::vector<MeasurementRecord>& records) {
    MeasurementRecord record;
    switch (m_reader.Read(line.text, record)) {
        case MeasurementReader::Kind::Columns:
            break;
        case MeasurementReader::Kind::Record:
            records.push_back(record);
            break;
        case MeasurementReader::Kind::Unreadable:
            m_display.Warning("unreadable line in " + line.file + ": " + line.text);
            break;
    }
}

void Runner::ShowLogText(const std::string& text) {
    const std::optional<StatusLine> status = ReadStatusLine(text);
    if (!status || !IsCycleStatus(status->text)) {
        if (m_options.log) {
            m_display.LogLine(text);
        }
        return;
    }
    m_display.Status(status->date, status->time, status->text);
    m_step = StepOfStatus(status->text).value_or("");
    m_stepStart = ReadDate(status->date + " " + status->time).value_or(0);
    m_duty = DutyOfStatus(status->text).value_or(m_duty);
}

void Runner::ShowResult(const MeasurementRecord& record) {
    m_display.Result(ResultLine(record, OnBoard().Settings().chlorine, m_duty));
    m_lastResult = OnBoard().Seconds();
    ++m_results;
}

std::string Runner::StepProgress() const {
    if (m_step.empty()) {
        return m_results == 0 ? "waiting for the first cycle" : "waiting for the next cycle";
    }
    const double now = static_cast<double>(OnBoard().WallNanoSeconds()) / 1e9;
    const double passed = std::max(0.0, now - static_cast<double>(m_stepStart));
    const auto duration = m_analyzer.Settings().durations.find(InternalName(m_step));
    if (duration == m_analyzer.Settings().durations.end() || !(duration->second > 0.0) || passed > duration->second) {
        return m_step + Format("  %.0f s", passed);
    }
    return m_step + "  " + ProgressBar(passed / duration->second, 20) +
           Format("  %.0f of %.0f s", passed, duration->second);
}

void Runner::ShowProgress() {
    if (!m_display.IsTerminal()) {
        return;
    }
    const InstrumentInputs inputs = OnBoard().Inputs();
    std::string doing = Format("LED %.1f %%", inputs.ledDuty * 100.0);
    if (inputs.valvePower > 0.0) {
        doing += ", sample flowing";
    }
    if (inputs.pumpStepFrequency != 0.0) {
        doing += ", pump turning";
    }
    if (inputs.stirStepFrequency != 0.0) {
        doing += ", stirring";
    }
    m_display.Progress(TimeOfDay(OnBoard().WallNanoSeconds()) + "  " + StepProgress() + "   " + doing);
}

}  // namespace Bench
