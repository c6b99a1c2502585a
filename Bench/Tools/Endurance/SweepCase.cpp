#include "Bench/Tools/Endurance/SweepCase.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
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

constexpr std::int64_t StartSeconds = 1798758000;  // 2026-12-31 23:00:00 UTC
constexpr int PollMilliseconds = 5;

// Deadlines in simulated seconds, many times what each takes. A machine without time for us is waited for, too: nothing
// is given up before as many real seconds.
constexpr double StartDeadline = 200.0;
constexpr double ResultDeadline = 900.0;
constexpr double ResetDeadline = 200.0;
constexpr double RealDeadline = 30.0;
constexpr double RealResultDeadline = 10.0;  // no verdict depends on a result
constexpr int SweepResetRequests = 3;

// A station that lost a part of an answer can't tell where the next one begins: it connects anew.
constexpr double AnswerTimeout = 0.2;  // real seconds
constexpr int AsksOfAConnection = 12;

// A day file that is there already, with a record of an hour before.
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

// Without the one that may be in writing.
std::string WholeLines(const std::string& text) { return text.substr(0, text.rfind('\n') + 1); }

// What a library says before it ends a program whose memory or objects are damaged, as no failed call may leave them.
constexpr const char* Damages[] = {
    "free(): ",    "malloc(): ", "realloc(): ", "malloc_consolidate(): ",
    "double free", "corrupted",  "smashing",    "pure virtual",
    "Fatal glibc", "Assertion ", "assertion ",  "without an active exception",
};

// It may end by an uncaught exception, by a setting that is missing or where the front end's link breaks in a write,
// each with a line that tells of it, or with the status of a start that failed; and in no other way.
bool IsNamedEnd(int code, const std::string& told) {
    constexpr int FailedStart = 255;
    for (const char* damage : Damages) {
        if (told.find(damage) != std::string::npos) {
            return false;
        }
    }
    const bool isSignal = code > 128 && code < 128 + NSIG;
    const bool isAllowed = isSignal ? code == 128 + SIGABRT || code == 128 + SIGPIPE : code > 0;
    return code == FailedStart || (isAllowed && !told.empty());
}

// Every step lasts a second at most, so a cycle takes half a minute.
std::optional<std::string> ShortDuration(const SettingsItem& item) {
    const long milliseconds = std::min(1000L, std::strtol(item.value.c_str(), nullptr, 10));
    return item.name == "Duration" ? std::optional(std::to_string(milliseconds)) : std::nullopt;
}

// Until the condition, the end of the program or both deadlines.
template <typename Condition>
bool WaitFor(SystemUnderTest& system, double seconds, Condition condition, double realDeadline = RealDeadline) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const double last = system.OnBoard().Seconds() + seconds;
    std::string end;
    while (!condition()) {
        const double real = std::chrono::duration<double>(Clock::now() - begin).count();
        if ((system.OnBoard().Seconds() > last && real > realDeadline) || system.HasEnded(end)) {
            return condition();
        }
        SleepMilliseconds(PollMilliseconds);
    }
    return true;
}

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

// What the player's two processes say at its start ends no line, so that anything may follow it there.
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
    setup.speed = m_speed;
    setup.startSeconds = StartSeconds;
    setup.noise = false;
    // Any value is an alert, so that there is a sound.
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
        trouble = "the run without a failure goes wrong: " + course.end;
        return false;
    }
    // Threads of a start that end by themselves have gone by then.
    const double settled = system.OnBoard().Seconds() + 100.0;
    WaitFor(system, 101.0, [&] { return system.OnBoard().Seconds() > settled; });
    baseline.footprint = system.Measure().value_or(Footprint{});
    for (const std::string& kind : Board::CallKinds()) {
        baseline.calls[kind] = system.OnBoard().CallCount(kind);
    }
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
            report = {SweepOutcome::RecordLost, "the day file doesn't begin with what it held"};
        }
    }
    return report;
}

// A start, the test state, one cycle with a sound behind it.
SweepCase::Course SweepCase::Live(SystemUnderTest& system) const {
    Course course;
    const auto hasValue = [&] {
        std::size_t behind = 0;
        return system.AtFrontEnd().WaitForValue("ChlorineValue", std::nullopt, behind, 0.0).has_value();
    };
    const std::size_t written = EarlierRecords().size();
    course.isConnected = WaitFor(system, StartDeadline, [&] { return system.AtFrontEnd().Connections() > 0; });
    course.isInTestState = course.isConnected && ReachTestState(system, 1, StartDeadline);
    if (course.isConnected) {
        // The automatic start takes 65 seconds, in which the top controller hears nothing.
        for (int request = 0; request < SweepResetRequests && !course.hasResult; ++request) {
            system.AtFrontEnd().SendCode(FrontEnd::Running);
            course.hasResult = WaitFor(system, ResultDeadline / SweepResetRequests, hasValue, RealResultDeadline);
        }
    }
    const auto hasRecord = [&] {
        std::error_code problem;
        return std::filesystem::file_size(system.Card() + DayFile, problem) > written && !problem;
    };
    course.hasRecord = WaitFor(system, course.hasResult ? 60.0 : 1.0, hasRecord, RealResultDeadline);
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
        const auto answer = system.AtStation().Ask(RequestOf(840), AnswerTimeout);
        const auto text = answer ? DecodeTestText(answer->data) : std::nullopt;
        if (!answer && ++unanswered % AsksOfAConnection == 0) {
            system.AtStation().Disconnect();
        }
        return text && text->text == "TEST_STATE";
    });
}

// By either link, up to the test state of the next generation.
bool SweepCase::Reset(SystemUnderTest& system) const {
    const std::size_t generation = system.AtFrontEnd().Connections();
    const std::size_t station = system.AtStation().Connections();
    const auto isUp = [&] { return system.AtFrontEnd().Connections() > generation; };
    for (int request = 0; request < SweepResetRequests; ++request) {
        if (request % 2 == 1 || !system.AtFrontEnd().SendCode(FrontEnd::Reset)) {
            system.AtStation().SendRequest(RequestOf(860));
        }
        if (WaitFor(system, ResetDeadline, isUp)) {
            return ReachTestState(system, station + 1, StartDeadline);
        }
    }
    return false;
}

bool SweepCase::Settles(SystemUnderTest& system, const Footprint& wanted, Footprint& seen) const {
    return WaitFor(system, StartDeadline, [&] {
        // The last answer holds the link that its question came by, up to the next one.
        system.AtStation().Ask(RequestOf(840), AnswerTimeout);
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
    const std::string told = lines.empty() ? "" : *lines.begin();
    if (!course.isConnected || !course.isInTestState) {
        return {SweepOutcome::LinkLost, told};
    }
    if (!course.hasResult || !course.hasRecord) {
        return {SweepOutcome::ResultLost, told};
    }
    return {lines.empty() ? SweepOutcome::Unnoticed : SweepOutcome::Reported, told};
}

// It has ended, or no link brings a reset through: what a supervisor or a person does.
SweepReport SweepCase::Recover(SystemUnderTest& system, const Course& course, const SweepBaseline& baseline) const {
    std::string end = course.end;
    const bool hasEnded = course.hasEnded || system.HasEnded(end);
    std::string told;
    for (const std::string& line : NewLines(system, baseline)) {
        told += (told.empty() ? "" : " | ") + line;
    }
    if (hasEnded && !IsNamedEnd(system.EndCode(), told)) {
        return {SweepOutcome::Crashed, end + ": " + told};
    }
    const std::size_t station = system.AtStation().Connections();
    std::string trouble;
    if (!system.Restart(trouble) || !ReachTestState(system, station + 1, StartDeadline) || !Reset(system)) {
        return {SweepOutcome::Hung, end + ", " + told};
    }
    return {hasEnded ? SweepOutcome::Restarted : SweepOutcome::Stuck, (hasEnded ? end + ": " : "") + told};
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
            // Up to the level's setting the error stream has the lines of the log, too.
            const bool isOfLog = path == system.Log() || text.rfind("Vernicor[", 0) == 0;
            text.erase(0, isOfLog && moment != std::string::npos ? moment + 4 : 0);
            lines.insert(text);
        }
    }
    return lines;
}

// Those that no run without a failure had, and that are neither the routine of a start, of which the log has some now
// and then before its level is set, nor that of a reset in the midst of the next cycle.
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
