#include "Bench/Tools/Endurance/SweepCase.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Bench/Common/FileTail.h"
#include "Bench/Common/Text.h"
#include "Frameworks/Utilities/Version.h"

namespace Bench {

namespace {

// Timeouts in simulated seconds, many times what each takes.
constexpr double StartTimeout = 200.0;
constexpr double ResultTimeout = 900.0;
constexpr double SweepResetTimeout = 200.0;
constexpr double Interval = 1.0;  // between two looks
constexpr int SweepResetRequests = 3;

// After a lost part of an answer the station does not find the next one: it closes the link, and the analyzer connects
// again.
constexpr double AnswerTimeout = 2.0;
constexpr int RequestsPerConnection = 12;

// An existing day file, with a record of an hour before.
constexpr char DayFile[] = "/2026-12-31_Measurement.csv";
const std::string& EarlierRecords() {
    static const std::string records =
        "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,Measurement "
        "Index,Seconds,Nano Seconds,Version (" +
        std::string(GetVersionText().Text()) +
        ")\n"
        "UTC 2026-12-31 22:00:00,    46387.9166666667,0.249921,0.599811,1507.166667,2176066.000000,1224573.769231,1,"
        "1798754400,280551600\n";
    return records;
}

constexpr struct {
    const char* kind;
    int error;
} Errors[] = {
    {"open", EMFILE},   {"socket", EMFILE},         {"mmap", ENOMEM},  {"connect", ECONNREFUSED}, {"fork", EAGAIN},
    {"system", EAGAIN}, {"pthread_create", EAGAIN}, {"fopen", EMFILE}, {"allocation", ENOMEM},
};

int ErrorOf(const std::string& kind) {
    for (const auto& row : Errors) {
        if (kind == row.kind) {
            return row.error;
        }
    }
    return EIO;
}

// Without a last line that is incomplete.
std::string WholeLines(const std::string& text) { return text.substr(0, text.rfind('\n') + 1); }

// What a library prints before it ends a program with damaged memory or objects.
constexpr const char* Damages[] = {
    "free(): ",    "malloc(): ", "realloc(): ", "malloc_consolidate(): ",
    "double free", "corrupted",  "smashing",    "pure virtual",
    "Fatal glibc", "Assertion ", "assertion ",  "without an active exception",
};

// It may end by an uncaught exception, a missing setting or a broken front end link, each with a line that reports it,
// or with the status of a failed start.
bool IsNamedEnd(int code, const std::string& reported) {
    constexpr int FailedStart = 255;
    for (const char* damage : Damages) {
        if (reported.find(damage) != std::string::npos) {
            return false;
        }
    }
    const bool isSignal = code > 128 && code < 128 + NSIG;
    const bool isAllowed = isSignal ? code == 128 + SIGABRT || code == 128 + SIGPIPE : code > 0;
    return code == FailedStart || (isAllowed && !reported.empty());
}

// Every step lasts a second at most, so a cycle takes half a minute.
std::optional<std::string> ShortDuration(const SettingsItem& item) {
    const long milliseconds = std::min(1000L, std::strtol(item.value.c_str(), nullptr, 10));
    return item.name == "Duration" ? std::optional(std::to_string(milliseconds)) : std::nullopt;
}

// Waits for the condition, the end of the program or the timeout.
template <typename Condition>
bool WaitFor(SystemUnderTest& system, double seconds, Condition condition) {
    const double last = system.OnBoard().Seconds() + seconds;
    std::string end;
    while (!condition()) {
        if (system.OnBoard().Seconds() > last || system.HasEnded(end)) {
            return condition();
        }
        system.LetPass(Interval);
    }
    return true;
}

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

// The player's two processes print at their start without a line end, so any text may follow.
void EraseSounds(std::string& textWithoutDigits) {
    for (const std::string start :
         {"In Parent Process: Own pid =  and Child pid = ", "In Child Process: Own pid =  and Parent pid = "}) {
        for (std::size_t at = textWithoutDigits.find(start); at != std::string::npos;
             at = textWithoutDigits.find(start)) {
            textWithoutDigits.erase(at, start.size());
        }
    }
}

TestRequest RequestOf(std::uint16_t command) {
    TestRequest request;
    request.command = command;
    return request;
}

// The station's next answer. Earlier ones that arrived late are dropped.
std::optional<TestAnswer> Ask(SystemUnderTest& system, std::uint16_t command) {
    TestServer& station = system.AtStation();
    while (station.TakeAnswer(0.0)) {
    }
    if (!station.SendRequest(RequestOf(command))) {
        return std::nullopt;
    }
    WaitFor(system, AnswerTimeout, [&] { return station.Waiting() > 0; });
    return station.TakeAnswer(0.0);
}

}  // namespace

const char* NameOf(SweepOutcome outcome) {
    constexpr const char* Names[] = {
        "not reached", "unnoticed", "reported", "result lost", "link lost",   "restarted",
        "stuck",       "CRASHED",   "HUNG",     "GREW",        "RECORD LOST",
    };
    static_assert(std::size(Names) == static_cast<std::size_t>(SweepOutcome::Count));
    return Names[static_cast<std::size_t>(outcome)];
}

bool IsAllowed(SweepOutcome outcome) { return outcome < SweepOutcome::Crashed; }

bool SweepCase::Prepare(SystemUnderTest& system, std::string& trouble) const {
    BoardSetup setup;
    setup.exact.emplace();
    setup.startSeconds = LongRunStart;
    setup.noise = false;
    // Any value raises an alert, so there is a sound.
    const SettingList settings = {
        {"StartInTestMode", "true"}, {"LoggingLevel", "ERROR_LOG_LEVEL"}, {"AlertLevel", "-1.0"}};
    if (!system.ReadSettings(m_places, trouble)) {
        return false;
    }
    system.Settings().file.ChangeEach(ShortDuration);
    if (!system.Apply(settings, trouble) || !system.MakeBoard(setup, trouble) || !system.MakePeers(trouble)) {
        return false;
    }
    std::ofstream(system.Card() + DayFile, std::ios::binary) << EarlierRecords();
    return true;
}

bool SweepCase::RunBaseline(SweepBaseline& baseline, std::string& trouble) {
    SystemUnderTest system;
    if (!Prepare(system, trouble) || !system.Start(trouble)) {
        return false;
    }
    const Course course = Live(system);
    if (!course.hasRecord || !Reset(system)) {
        trouble = "the run without a failure fails: " + course.end;
        return false;
    }
    for (const std::string& kind : Board::CallKinds()) {
        baseline.calls[kind] = system.OnBoard().CallCount(kind);
    }
    // By then the threads that end after a start have ended.
    system.LetPass(100.0);
    baseline.footprint = system.Measure().value_or(Footprint{});
    const std::set<std::string> lines = Lines(system);
    baseline.lines.insert(lines.begin(), lines.end());
    return true;
}

SweepReport SweepCase::Try(const std::string& kind, int n, const SweepBaseline& baseline) {
    SystemUnderTest system;
    SweepReport report;
    if (!Prepare(system, report.detail) || !system.OnBoard().FailCall(kind, n, ErrorOf(kind)) ||
        !system.Start(report.detail)) {
        report.outcome = SweepOutcome::Crashed;
        return report;
    }
    const Course course = Live(system);
    report = Judge(system, course, baseline);
    system.Stop();
    const auto made = system.OnBoard().CallCount(kind);
    if (IsAllowed(report.outcome) && made < static_cast<std::uint64_t>(n)) {
        report = {SweepOutcome::NotReached, std::to_string(made) + " calls were made"};
    }
    const std::string records = ReadWholeFile(system.Card() + DayFile).value_or("");
    for (const std::string& earlier : {EarlierRecords(), course.records}) {
        if (records.compare(0, earlier.size(), earlier) != 0) {
            report = {SweepOutcome::RecordLost, "the day file doesn't begin with its earlier records"};
        }
    }
    return report;
}

// A start, the test state, one cycle and its sound.
SweepCase::Course SweepCase::Live(SystemUnderTest& system) const {
    Course course;
    const auto hasValue = [&] {
        std::size_t seen = 0;
        return system.AtFrontEnd().WaitForValue("ChlorineValue", std::nullopt, seen, 0.0).has_value();
    };
    const std::size_t written = EarlierRecords().size();
    course.isConnected = WaitFor(system, StartTimeout, [&] { return system.AtFrontEnd().Connections() > 0; });
    course.isInTestState = course.isConnected && ReachTestState(system, 1, StartTimeout);
    if (course.isConnected) {
        // The automatic start takes 65 seconds, in which the top controller reads no command.
        for (int request = 0; request < SweepResetRequests && !course.hasResult; ++request) {
            system.AtFrontEnd().SendCode(FrontEnd::Running);
            course.hasResult = WaitFor(system, ResultTimeout / SweepResetRequests, hasValue);
        }
    }
    const auto hasRecord = [&] {
        std::error_code problem;
        return std::filesystem::file_size(system.Card() + DayFile, problem) > written && !problem;
    };
    course.hasRecord = WaitFor(system, course.hasResult ? 60.0 : 1.0, hasRecord);
    course.records = WholeLines(ReadWholeFile(system.Card() + DayFile).value_or(""));
    course.hasEnded = system.HasEnded(course.end);
    return course;
}

bool SweepCase::ReachTestState(SystemUnderTest& system, std::size_t generation, double seconds) const {
    int unanswered = 0;
    return WaitFor(system, seconds, [&] {
        if (system.AtStation().Connections() < generation || !system.AtStation().IsConnected()) {
            return false;
        }
        const auto answer = Ask(system, 840);
        const auto text = answer ? DecodeTestText(answer->data) : std::nullopt;
        if (!answer && ++unanswered % RequestsPerConnection == 0) {
            system.AtStation().Disconnect();
        }
        return text && text->text == "TEST_STATE";
    });
}

// Resets by either link and waits for the test state.
bool SweepCase::Reset(SystemUnderTest& system) const {
    const std::size_t generation = system.AtFrontEnd().Connections();
    const std::size_t station = system.AtStation().Connections();
    const auto isUp = [&] { return system.AtFrontEnd().Connections() > generation; };
    for (int request = 0; request < SweepResetRequests; ++request) {
        if (request % 2 == 1 || !system.AtFrontEnd().SendCode(FrontEnd::Reset)) {
            system.AtStation().SendRequest(RequestOf(860));
        }
        if (WaitFor(system, SweepResetTimeout, isUp)) {
            return ReachTestState(system, station + 1, StartTimeout);
        }
    }
    return false;
}

bool SweepCase::Settles(SystemUnderTest& system, const Footprint& wanted, Footprint& seen) const {
    return WaitFor(system, StartTimeout, [&] {
        // The link of the last request stays open until the next one.
        Ask(system, 840);
        seen = system.Measure().value_or(Footprint{});
        return seen.descriptors <= wanted.descriptors && seen.threads <= wanted.threads &&
               seen.zombies <= wanted.zombies && seen.threads > 0;
    });
}

SweepReport SweepCase::Judge(SystemUnderTest& system, const Course& course, const SweepBaseline& baseline) const {
    if (course.hasEnded || !Reset(system)) {
        return Recover(system, course, baseline);
    }
    Footprint seen;
    if (!Settles(system, baseline.footprint, seen)) {
        std::string end;
        if (system.HasEnded(end)) {
            return Recover(system, course, baseline);
        }
        return {SweepOutcome::Grew, "descriptors " + std::to_string(seen.descriptors) + ", threads " +
                                        std::to_string(seen.threads) + ", zombies " + std::to_string(seen.zombies)};
    }
    const std::set<std::string> lines = NewLines(system, baseline);
    const std::string reported = lines.empty() ? "" : *lines.begin();
    if (!course.isConnected || !course.isInTestState) {
        return {SweepOutcome::LinkLost, reported};
    }
    if (!course.hasResult || !course.hasRecord) {
        return {SweepOutcome::ResultLost, reported};
    }
    return {lines.empty() ? SweepOutcome::Unnoticed : SweepOutcome::Reported, reported};
}

// It has ended, or no link takes a reset: acts as a supervisor.
SweepReport SweepCase::Recover(SystemUnderTest& system, const Course& course, const SweepBaseline& baseline) const {
    std::string end = course.end;
    const bool hasEnded = course.hasEnded || system.HasEnded(end);
    std::string reported;
    for (const std::string& line : NewLines(system, baseline)) {
        reported += (reported.empty() ? "" : " | ") + line;
    }
    if (hasEnded && !IsNamedEnd(system.EndCode(), reported)) {
        return {SweepOutcome::Crashed, end + ": " + reported};
    }
    const std::size_t station = system.AtStation().Connections();
    std::string trouble;
    if (!system.Restart(trouble) || !ReachTestState(system, station + 1, StartTimeout) || !Reset(system)) {
        return {SweepOutcome::Hung, end + ", " + reported};
    }
    return {hasEnded ? SweepOutcome::Restarted : SweepOutcome::Stuck, (hasEnded ? end + ": " : "") + reported};
}

std::set<std::string> SweepCase::Lines(const SystemUnderTest& system) {
    std::set<std::string> lines;
    for (const std::string& path : {system.Output(), system.Log()}) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            std::string text = TextOfLogRecord(line).value_or(line);
            text.erase(std::remove_if(text.begin(), text.end(), IsDigit), text.end());
            EraseSounds(text);
            const std::size_t moment = text.find(" :: ");
            // Until the log level is set, the error stream has the lines of the log too.
            const bool isOfLog = path == system.Log() || text.rfind("Vernicor[", 0) == 0;
            text.erase(0, isOfLog && moment != std::string::npos ? moment + 4 : 0);
            lines.insert(text);
        }
    }
    return lines;
}

// Lines of no run without a failure, and neither the routine of a start, which is in the log until its level is set,
// nor that of a reset during the next cycle.
std::set<std::string> SweepCase::NewLines(const SystemUnderTest& system, const SweepBaseline& baseline) {
    std::set<std::string> lines = Lines(system);
    for (const std::string& line : baseline.lines) {
        lines.erase(line);
    }
    for (const char* routine :
         {"Changing to ", "Initializing Thread ", "Thread Created ", "Gathering ", "Command Message (",
          "Data Message (", "Registering ", "Sending Command ", "Ending Thread ", "Killing Thread ",
          "Aborted Measurement Cycle", "MeasurementControl::Run  Unable to create and send "}) {
        std::erase_if(lines, [routine](const std::string& line) { return line.rfind(routine, 0) == 0; });
    }
    return lines;
}

}  // namespace Bench
