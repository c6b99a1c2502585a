#include "Bench/Endurance/SweepCase.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "Bench/Console/Records.h"

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
constexpr double AnswerPatience = 0.2;  // real seconds
constexpr int AsksOfAConnection = 12;

// A day file that is there already, with a record of an hour before.
constexpr char DayFile[] = "/2026-12-31_Measurement.csv";
constexpr char EarlierRecords[] =
    "Text Date / Time,Xcel Time,Absorbance,Chlorine,Dark Count,Reference Count,Sample Count,Measurement Index,Seconds,"
    "Nano Seconds,Version (0.2.1.19)\n"
    "UTC 2026-12-31 22:00:00,    46387.9166666667,0.249921,0.599811,1507.166667,2176066.000000,1224573.769231,1,"
    "1798754400,280551600\n";

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

std::string TextOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
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

// Every step as short as it can be, so that a cycle takes half a minute.
void ShortenSteps(std::string& configuration) {
    const std::string item = "name=\"Duration\"";
    const std::string value = " value=\"";
    for (std::size_t at = configuration.find(item); at != std::string::npos; at = configuration.find(item, at)) {
        at = configuration.find(value, at) + value.size();
        const std::size_t end = configuration.find('"', at);
        const std::string shortest =
            std::to_string(std::min(1000L, std::strtol(configuration.c_str() + at, nullptr, 10)));
        configuration.replace(at, end - at, shortest);
    }
}

// Until the condition, the end of the program or both deadlines.
template <typename Condition>
bool WaitFor(Subject& subject, double seconds, Condition condition, double realDeadline = RealDeadline) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const double last = subject.OnBoard().Seconds() + seconds;
    std::string end;
    while (!condition()) {
        const double real = std::chrono::duration<double>(Clock::now() - begin).count();
        if ((subject.OnBoard().Seconds() > last && real > realDeadline) ||
            subject.HasEnded(end) != Subject::End::Runs) {
            return condition();
        }
        poll(nullptr, 0, PollMilliseconds);
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
        "not reached", "unnoticed", "told", "result lost", "link lost",   "restarted",
        "stuck",       "CRASHED",   "HUNG", "GREW",        "RECORD LOST",
    };
    static_assert(std::size(Names) == static_cast<std::size_t>(SweepOutcome::Count));
    return Names[static_cast<std::size_t>(outcome)];
}

bool IsAllowed(SweepOutcome outcome) { return outcome < SweepOutcome::Crashed; }

bool SweepCase::Prepare(Subject& subject, std::string& trouble) const {
    BoardSetup setup;
    setup.speed = m_speed;
    setup.startSeconds = StartSeconds;
    setup.noise = false;
    // Any value is an alert, so that there is a sound.
    const SettingList settings = {
        {"StartInTestMode", "true"}, {"LoggingLevel", "ERROR_LOG_LEVEL"}, {"AlertLevel", "-1.0"}};
    if (!subject.Prepare(m_places, setup, settings, trouble)) {
        return false;
    }
    const std::string file = subject.Folder().Path() + "/usr/share/vorn/bin/configuration/analyzer.conf.xml";
    std::string configuration = TextOf(file);
    ShortenSteps(configuration);
    std::ofstream(file, std::ios::binary) << configuration;
    std::ofstream(subject.Folder().Card() + DayFile, std::ios::binary) << EarlierRecords;
    return true;
}

bool SweepCase::Refer(SweepReference& reference, std::string& trouble) {
    Subject subject;
    if (!Prepare(subject, trouble) || !subject.Start(trouble)) {
        return false;
    }
    const Course course = Live(subject);
    if (!course.hasRecord || !Reset(subject)) {
        trouble = "the run without a failure goes wrong: " + course.end;
        return false;
    }
    // Threads of a start that end by themselves have gone by then.
    const double settled = subject.OnBoard().Seconds() + 100.0;
    WaitFor(subject, 101.0, [&] { return subject.OnBoard().Seconds() > settled; });
    reference.footprint = subject.Measure().value_or(Footprint{});
    for (const std::string& kind : Board::CallKinds()) {
        reference.calls[kind] = subject.OnBoard().CallCount(kind);
    }
    const std::set<std::string> lines = Lines(subject);
    reference.lines.insert(lines.begin(), lines.end());
    return true;
}

SweepReport SweepCase::Try(const std::string& kind, int n, const SweepReference& reference) {
    Subject subject;
    SweepReport report;
    if (!Prepare(subject, report.detail) || !subject.OnBoard().FailCall(kind, n, ErrorOf(kind)) ||
        !subject.Start(report.detail)) {
        report.outcome = SweepOutcome::Crashed;
        return report;
    }
    const Course course = Live(subject);
    report = Judge(subject, course, reference);
    subject.Stop();
    const auto made = subject.OnBoard().CallCount(kind);
    if (IsAllowed(report.outcome) && made < static_cast<std::uint64_t>(n)) {
        report = {SweepOutcome::NotReached, std::to_string(made) + " calls were made"};
    }
    const std::string records = TextOf(subject.Folder().Card() + DayFile);
    for (const std::string& earlier : {std::string(EarlierRecords), course.records}) {
        if (records.compare(0, earlier.size(), earlier) != 0) {
            report = {SweepOutcome::RecordLost, "the day file doesn't begin with what it held"};
        }
    }
    return report;
}

// A start, the test state, one cycle with a sound behind it.
SweepCase::Course SweepCase::Live(Subject& subject) const {
    Course course;
    const auto hasValue = [&] {
        std::size_t behind = 0;
        return subject.AtFrontEnd().WaitForValue("ChlorineValue", std::nullopt, behind, 0.0).has_value();
    };
    const std::size_t written = std::char_traits<char>::length(EarlierRecords);
    course.isConnected = WaitFor(subject, StartDeadline, [&] { return subject.AtFrontEnd().Connections() > 0; });
    course.isInTestState = course.isConnected && ReachTestState(subject, 1, StartDeadline);
    if (course.isConnected) {
        // The automatic start takes 65 seconds, in which the top controller hears nothing.
        for (int request = 0; request < SweepResetRequests && !course.hasResult; ++request) {
            subject.AtFrontEnd().SendCode(FrontEnd::Running);
            course.hasResult = WaitFor(subject, ResultDeadline / SweepResetRequests, hasValue, RealResultDeadline);
        }
    }
    const auto hasRecord = [&] {
        std::error_code problem;
        return std::filesystem::file_size(subject.Folder().Card() + DayFile, problem) > written && !problem;
    };
    course.hasRecord = WaitFor(subject, course.hasResult ? 60.0 : 1.0, hasRecord, RealResultDeadline);
    course.records = WholeLines(TextOf(subject.Folder().Card() + DayFile));
    course.hasEnded = subject.HasEnded(course.end) != Subject::End::Runs;
    return course;
}

bool SweepCase::ReachTestState(Subject& subject, std::size_t generation, double seconds) const {
    int unanswered = 0;
    return WaitFor(subject, seconds, [&] {
        if (subject.AtStation().Connections() < generation || !subject.AtStation().IsConnected()) {
            return false;
        }
        const auto answer = subject.AtStation().Ask(RequestOf(840), AnswerPatience);
        const auto text = answer ? DecodeTestText(answer->data) : std::nullopt;
        if (!answer && ++unanswered % AsksOfAConnection == 0) {
            subject.AtStation().Disconnect();
        }
        return text && text->text == "TEST_STATE";
    });
}

// By either link, up to the test state of the next generation.
bool SweepCase::Reset(Subject& subject) const {
    const std::size_t generation = subject.AtFrontEnd().Connections();
    const std::size_t station = subject.AtStation().Connections();
    const auto isUp = [&] { return subject.AtFrontEnd().Connections() > generation; };
    for (int request = 0; request < SweepResetRequests; ++request) {
        if (request % 2 == 1 || !subject.AtFrontEnd().SendCode(FrontEnd::Reset)) {
            subject.AtStation().SendRequest(RequestOf(860));
        }
        if (WaitFor(subject, ResetDeadline, isUp)) {
            return ReachTestState(subject, station + 1, StartDeadline);
        }
    }
    return false;
}

bool SweepCase::Settles(Subject& subject, const Footprint& wanted, Footprint& seen) const {
    return WaitFor(subject, StartDeadline, [&] {
        // The last answer holds the link that its question came by, up to the next one.
        subject.AtStation().Ask(RequestOf(840), AnswerPatience);
        seen = subject.Measure().value_or(Footprint{});
        return seen.descriptors <= wanted.descriptors && seen.threads <= wanted.threads &&
               seen.zombies <= wanted.zombies && seen.threads > 0;
    });
}

SweepReport SweepCase::Judge(Subject& subject, const Course& course, const SweepReference& reference) const {
    if (course.hasEnded || !Reset(subject)) {
        return Recover(subject, course, reference);
    }
    Footprint seen;
    if (!Settles(subject, reference.footprint, seen)) {
        std::string end;
        if (subject.HasEnded(end) != Subject::End::Runs) {
            return Recover(subject, course, reference);
        }
        return {SweepOutcome::Grew, "descriptors " + std::to_string(seen.descriptors) + ", threads " +
                                        std::to_string(seen.threads) + ", zombies " + std::to_string(seen.zombies)};
    }
    const std::set<std::string> lines = NewLines(subject, reference);
    const std::string told = lines.empty() ? "" : *lines.begin();
    if (!course.isConnected || !course.isInTestState) {
        return {SweepOutcome::LinkLost, told};
    }
    if (!course.hasResult || !course.hasRecord) {
        return {SweepOutcome::ResultLost, told};
    }
    return {lines.empty() ? SweepOutcome::Unnoticed : SweepOutcome::Told, told};
}

// It has ended, or no link brings a reset through: what a supervisor or a person does.
SweepReport SweepCase::Recover(Subject& subject, const Course& course, const SweepReference& reference) const {
    std::string end = course.end;
    const bool hasEnded = course.hasEnded || subject.HasEnded(end) != Subject::End::Runs;
    std::string told;
    for (const std::string& line : NewLines(subject, reference)) {
        told += (told.empty() ? "" : " | ") + line;
    }
    if (hasEnded && !IsNamedEnd(subject.EndCode(), told)) {
        return {SweepOutcome::Crashed, end + ": " + told};
    }
    const std::size_t station = subject.AtStation().Connections();
    std::string trouble;
    if (!subject.Restart(trouble) || !ReachTestState(subject, station + 1, StartDeadline) || !Reset(subject)) {
        return {SweepOutcome::Hung, end + ", " + told};
    }
    return {hasEnded ? SweepOutcome::Restarted : SweepOutcome::Stuck, (hasEnded ? end + ": " : "") + told};
}

std::set<std::string> SweepCase::Lines(const Subject& subject) {
    std::set<std::string> lines;
    for (const std::string& path : {subject.Output(), subject.Log()}) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            std::string text = TextOfLogRecord(line).value_or(line);
            text.erase(std::remove_if(text.begin(), text.end(), IsDigit), text.end());
            EraseSounds(text);
            const std::size_t moment = text.find(" :: ");
            // Up to the level's setting the error stream has the lines of the log, too.
            const bool isOfLog = path == subject.Log() || text.rfind("Vernicor[", 0) == 0;
            text.erase(0, isOfLog && moment != std::string::npos ? moment + 4 : 0);
            lines.insert(text);
        }
    }
    return lines;
}

// Those that no run without a failure had, and that are neither the routine of a start, of which the log has some now
// and then before its level is set, nor that of a reset in the midst of the next cycle.
std::set<std::string> SweepCase::NewLines(const Subject& subject, const SweepReference& reference) {
    std::set<std::string> lines = Lines(subject);
    for (const std::string& line : reference.lines) {
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
