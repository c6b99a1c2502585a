#include "Bench/Console/Runner.h"

#include <poll.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "Bench/Common/Program.h"
#include "Bench/Peers/FrontEnd.h"
#include "System/Messages/StepType.h"

namespace Bench {

namespace {

// Simulated time before the first cycle: the automatic start waits for silence, primes and settles.
constexpr double StartSeconds = 120.0;
// Of a cycle beside its steps: homing and the trials of the LED adjustment.
constexpr double CycleExtraSeconds = 60.0;
constexpr double TimesExpected = 3.0;
constexpr int LookMilliseconds = 50;

[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...) {
    char text[1024];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof(text), format, values);
    va_end(values);
    return text;
}

std::string TimeOfDay(std::int64_t wallNanoSeconds) {
    const auto seconds = static_cast<std::time_t>(wallNanoSeconds / 1000000000);
    std::tm date{};
    gmtime_r(&seconds, &date);
    char text[16];
    std::strftime(text, sizeof(text), "%H:%M:%S", &date);
    return text;
}

std::string Length(double seconds) {
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
    if (!Prepare(error)) {
        return Refuse("run", error);
    }
    Greet();
    const std::string program = m_options.program.empty() ? m_places.program : m_options.program;
    if (!m_analyzer.Start(program, m_places.library, m_folder.Path(), m_folder.Path() + "/output", error)) {
        return Fail(error);
    }
    const int status = Follow();
    m_display.EndProgress();
    m_analyzer.Stop();
    m_display.Quiet(Format("%llu %s in %s of simulated time; the run's files stay in %s",
                           static_cast<unsigned long long>(m_results), m_results == 1 ? "result" : "results",
                           Length(m_board->Seconds()).c_str(), m_folder.Path().c_str()));
    return status;
}

bool Runner::Prepare(std::string& error) {
    const std::string configuration = m_options.config.empty() ? m_places.configuration : m_options.config;
    const std::string bench = m_options.bench.empty() ? m_places.bench : m_options.bench;
    return ReadAnalyzerSettings(configuration, m_settings, error) && SetLevels(error) && m_folder.Take(bench, error) &&
           m_folder.Furnish(m_settings.text, m_places.clips, error) && MakeBoard(error);
}

bool Runner::SetLevels(std::string& error) {
    const struct {
        const char* option;
        const char* name;
        const std::string& level;
    } levels[] = {{"--alert", "AlertLevel", m_options.alertLevel}, {"--alarm", "AlarmLevel", m_options.alarmLevel}};
    for (const auto& row : levels) {
        if (!row.level.empty() && !SetSetting(m_settings.text, row.name, row.level)) {
            error = std::string(row.option) + ": the configuration gives no " + row.name;
            return false;
        }
    }
    return true;
}

bool Runner::MakeBoard(std::string& error) {
    BoardSetup setup;
    setup.speed = m_options.speed;
    setup.startSeconds = m_options.start.value_or(std::time(nullptr));
    setup.seed = m_options.seed;
    setup.noise = m_options.noise;
    m_board = Board::Create(m_folder.Path(), setup, error);
    if (!m_board) {
        return false;
    }
    m_board->SetLoopbackOpen(true);  // somebody may have a front end of his own
    if (m_options.frontEndPort) {
        m_board->MapPort(FrontEnd::DefaultPort, *m_options.frontEndPort);
    }
    if (m_options.testServerPort) {
        m_board->MapPort(m_settings.testServerPort, *m_options.testServerPort);
    }
    InstrumentSettings instrument = m_board->Settings();
    instrument.chlorine = m_options.chlorine;
    instrument.cellConstant = m_settings.cellConstant;
    m_board->SetSettings(instrument);
    for (const std::string& fault : m_options.faults) {
        if (!m_board->SetFault(fault, error)) {
            error.insert(0, "--fault " + fault + ": ");
            return false;
        }
    }
    m_measurements.emplace(m_folder.Card(), m_settings.measurementFileName);
    m_log.emplace(m_folder.Path() + "/log");
    return true;
}

void Runner::Greet() {
    m_display.Line(
        Format("The analyzer on the bench: %.4g mg/l chlorine in the water, cell constant %.6g, %.4g times "
               "as fast as the clock",
               m_options.chlorine, m_settings.cellConstant, m_options.speed));
}

int Runner::Follow() {
    const volatile std::sig_atomic_t& signal = CatchSignals();
    while (true) {
        Look();
        if (m_options.cycles && m_results >= *m_options.cycles) {
            return ExitSuccess;
        }
        if (signal != 0) {
            return ExitSignalBase + signal;
        }
        std::string reason;
        if (m_analyzer.HasEnded(reason)) {
            Look();
            return Fail(reason + "; what it printed stands in " + m_folder.Path() + "/output");
        }
        const double allowed = SecondsAllowed();
        if (m_board->Seconds() - m_lastResult > allowed) {
            const char* card = m_board->Card().inserted ? "" : ", and the card with its records is out";
            return Fail("no result in " + Length(allowed) + " of simulated time" + card);
        }
        ShowProgress();
        poll(nullptr, 0, LookMilliseconds);
    }
}

double Runner::SecondsAllowed() const {
    const double expected = m_settings.cycleSeconds + CycleExtraSeconds + (m_results == 0 ? StartSeconds : 0.0);
    return TimesExpected * expected;
}

int Runner::Fail(const std::string& reason) {
    m_display.EndProgress();
    std::fprintf(stderr, "run: %s\n", reason.c_str());
    return ExitFailure;
}

void Runner::ShowIndicator() {
    if (const std::optional<IndicatorView> view = m_indicator.Look(*m_board)) {
        m_display.Indicator(IndicatorLine(*view));
    }
}

void Runner::Look() {
    AnnounceFaults();
    ShowIndicator();
    // Records first: the status texts of a cycle are in the log before its record is on the card.
    std::vector<MeasurementRecord> records;
    for (const DayFileTail::Line& line : m_measurements->Read()) {
        TakeRecord(line, records);
    }
    for (const std::string& line : m_log->Read()) {
        TakeLogText(TextOfLogRecord(line).value_or(line));
    }
    for (const MeasurementRecord& record : records) {
        if (!m_options.cycles || m_results < *m_options.cycles) {
            ShowResult(record);
        }
    }
}

void Runner::AnnounceFaults() {
    for (const ActiveFault& fault : m_board->Faults()) {
        if (fault.active && m_announced.insert(fault.text).second) {
            m_display.Warning(TimeOfDay(m_board->WallNanoSeconds()) + "  fault " + fault.text);
        }
    }
}

void Runner::TakeRecord(const DayFileTail::Line& line, std::vector<MeasurementRecord>& records) {
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

void Runner::TakeLogText(const std::string& text) {
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
    m_display.Result(ResultLine(record, m_board->Settings().chlorine, m_duty));
    m_lastResult = m_board->Seconds();
    ++m_results;
}

std::string Runner::RunningStep() const {
    if (m_step.empty()) {
        return m_results == 0 ? "waiting for the first cycle" : "waiting for the next cycle";
    }
    const double now = static_cast<double>(m_board->WallNanoSeconds()) / 1e9;
    const double passed = std::max(0.0, now - static_cast<double>(m_stepStart));
    const auto duration = m_settings.durations.find(InternalName(m_step));
    if (duration == m_settings.durations.end() || !(duration->second > 0.0) || passed > duration->second) {
        return m_step + Format("  %.0f s", passed);
    }
    return m_step + "  " + ProgressBar(passed / duration->second, 20) +
           Format("  %.0f of %.0f s", passed, duration->second);
}

void Runner::ShowProgress() {
    if (!m_display.IsTerminal()) {
        return;
    }
    const InstrumentInputs inputs = m_board->Inputs();
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
    m_display.Progress(TimeOfDay(m_board->WallNanoSeconds()) + "  " + RunningStep() + "   " + doing);
}

}  // namespace Bench
