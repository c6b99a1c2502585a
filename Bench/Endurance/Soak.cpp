#include "Bench/Endurance/Soak.h"

#include <poll.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace Bench {

namespace {

constexpr double SecondsOfDay = 86400.0;

// Of real time, since it is the machine that they are given to: until a record is on the card, until a reset is done.
constexpr double RecordPatience = 10.0;
constexpr double ResetPatience = 2.0;
constexpr int SoakResetRequests = 30;  // one that comes together with another button isn't seen

// Simulated seconds without a result until the analyzer is told to run, is reset, and is given up.
constexpr double RunAgain = 1500.0;
constexpr double ResetAgain = 6000.0;
constexpr double GiveUp = 60000.0;

SoakPace PaceOf(const SoakGoals& goals) {
    if (goals.days > 0.0) {
        return {600.0, 43200.0, 1200.0};
    }
    return goals.cycles > 0 ? SoakPace{60.0, 7200.0, 400.0} : SoakPace{10.0, 40.0, 60.0};
}

bool IsCardFault(const std::string& fault) { return fault.compare(0, 5, "card-") == 0; }

}  // namespace

Soak::Soak(Subject& subject, std::uint32_t seed, const SoakGoals& goals)
    : m_subject(subject),
      m_goals(goals),
      m_plan(seed, PaceOf(goals)),
      m_next(m_plan.Next()),
      m_ledger(subject.Folder().Card(), subject.Settings().measurementFileName),
      m_events(subject.Folder().Path() + "/events") {}

bool Soak::IsDone() const {
    return m_ledger.Recorded() >= m_goals.cycles && m_resets >= m_goals.resets &&
           m_subject.OnBoard().Seconds() >= m_goals.days * SecondsOfDay;
}

bool Soak::Run(const volatile int& stop, std::string& trouble) {
    while (!IsDone() && stop == 0) {
        if (!Tick(trouble)) {
            return false;
        }
        poll(nullptr, 0, TickMilliseconds);
    }
    if (!SettleResults(trouble) || !SavedHours(trouble)) {
        return false;
    }
    const bool isLong = m_goals.cycles >= 50 || m_goals.resets >= 50 || m_goals.days >= 1.0;
    if (isLong && m_series.Size() >= ReadingsToJudge && !m_series.IsFlat()) {
        trouble = "the program grew";
        return false;
    }
    return true;
}

bool Soak::Tick(std::string& trouble) {
    Measure();
    Look();
    if (!m_subject.StaysUp(trouble) || !JudgeResults(trouble) || !KeepGoing(trouble)) {
        return false;
    }
    // A machine that falls behind the plan makes it longer and not denser.
    const double now = m_subject.OnBoard().Seconds();
    if (m_next.second + m_delay > now) {
        return true;
    }
    m_delay = now - m_next.second;
    const bool isWell = Do(m_next, trouble);
    m_delay += m_next.action == SoakAction::Reset ? m_subject.OnBoard().Seconds() - now : 0.0;
    m_next = m_plan.Next();
    return isWell;
}

void Soak::Measure() {
    const double elapsed = std::chrono::duration<double>(Clock::now() - m_start).count();
    if (elapsed < m_nextReading) {
        return;
    }
    m_nextReading = elapsed + ReadingDistance;
    if (const std::optional<Footprint> footprint = m_subject.Measure()) {
        m_series.Add(*footprint);
    }
    m_subject.CutTexts(LongestText);
}

void Soak::Look() {
    std::vector<FrontEndFrame> frames;
    while (std::optional<FrontEndFrame> frame =
               m_subject.AtFrontEnd().WaitForValue("ChlorineValue", std::nullopt, m_frames, 0.0)) {
        frames.push_back(std::move(*frame));
    }
    const double now = m_subject.OnBoard().Seconds();
    if (!frames.empty()) {
        m_lastResult = now;
        m_nudged = now;
    }
    m_ledger.Look(frames, now);
    while (m_subject.AtStation().TakeAnswer(0.0)) {
        ++m_answers;
    }
}

bool Soak::Do(const SoakEvent& event, std::string& trouble) {
    m_events << event.Describe() << std::endl;
    Board& board = m_subject.OnBoard();
    switch (event.action) {
        case SoakAction::Button:
            ++m_commands;
            m_subject.AtFrontEnd().SendCode(event.code);
            return true;
        case SoakAction::Station:
            ++m_commands;
            m_subject.AtStation().SendRequest(event.request);
            return true;
        case SoakAction::FaultOn:
            ++m_faults;
            m_cardFaults += IsCardFault(event.fault) ? 1 : 0;
            m_setBack +=
                event.fault.compare(0, 11, "clock-back=") == 0 ? std::strtod(event.fault.c_str() + 11, nullptr) : 0.0;
            return board.SetFault(event.fault, trouble);
        case SoakAction::FaultOff:
            if (IsCardFault(event.fault)) {
                --m_cardFaults;
                m_cardFaultEnd = board.Seconds();
            }
            return board.ClearFault(event.fault, trouble);
        case SoakAction::Reset:
            return Reset(event.byStation, trouble);
    }
    return true;
}

// What has been reported first comes to the card: a reset drops what still stands in the queue of the logging.
bool Soak::Reset(bool byStation, std::string& trouble) {
    if (!SettleResults(trouble)) {
        return false;
    }
    m_resetBegin = m_subject.OnBoard().Seconds();
    for (int request = 0; request < SoakResetRequests; ++request) {
        // The station is heard in the test state alone.
        if (TryReset(byStation && request == 0)) {
            ++m_resets;
            Look();
            m_resetEnd = m_subject.OnBoard().Seconds();
            return true;
        }
        if (!m_subject.StaysUp(trouble)) {
            return false;
        }
    }
    trouble = "no reset on request";
    return false;
}

bool Soak::TryReset(bool byStation) {
    FrontEnd& frontEnd = m_subject.AtFrontEnd();
    const std::size_t generation = frontEnd.Connections();
    TestRequest request;
    request.command = 860;
    if (!byStation || !m_subject.AtStation().SendRequest(request)) {
        frontEnd.SendCode(FrontEnd::Reset);
    }
    return frontEnd.WaitForConnection(generation + 1, ResetPatience);
}

bool Soak::KeepGoing(std::string& trouble) {
    if (m_goals.cycles == 0 && !(m_goals.days > 0.0)) {
        return true;
    }
    const double now = m_subject.OnBoard().Seconds();
    if (now - m_lastResult > GiveUp) {
        trouble = "no result in " + std::to_string(static_cast<int>(GiveUp)) + " simulated seconds";
        return false;
    }
    if (now - m_nudged > ResetAgain) {
        m_nudged = now;
        return Reset(false, trouble);
    }
    if (now - std::max(m_lastResult, m_asked) > RunAgain) {
        m_asked = now;
        m_subject.AtFrontEnd().SendCode(FrontEnd::Running);
    }
    return true;
}

bool Soak::IsExcused(const ResultLedger::Missing& result) const {
    const double margin = 60.0 + m_subject.OnBoard().Speed();
    return m_cardFaults > 0 || result.seconds < m_cardFaultEnd + margin;
}

bool Soak::JudgeResults(std::string& trouble) {
    const double now = m_subject.OnBoard().Seconds();
    while (!m_ledger.Pending().empty()) {
        const ResultLedger::Missing& oldest = m_ledger.Pending().front();
        const double patience = 60.0 + RecordPatience * m_subject.OnBoard().Speed();
        if (now - oldest.seconds < patience) {
            break;
        }
        if (oldest.seconds >= m_resetBegin && oldest.seconds <= m_resetEnd) {
            ++m_cut;
        } else if (IsExcused(oldest)) {
            ++m_excused;
        } else {
            trouble = "the result " + oldest.date + " stands in no day file";
            return false;
        }
        m_ledger.Forgive();
    }
    trouble = m_ledger.Trouble();
    return trouble.empty();
}

// Waits for the records of what has been reported so far, unless the card is in trouble.
bool Soak::SettleResults(std::string& trouble) {
    const double begin = m_subject.OnBoard().Seconds();
    const auto isAwaited = [&](const ResultLedger::Missing& result) {
        return result.seconds <= begin && !IsExcused(result);
    };
    while (std::any_of(m_ledger.Pending().begin(), m_ledger.Pending().end(), isAwaited)) {
        if (!JudgeResults(trouble)) {
            return false;
        }
        poll(nullptr, 0, TickMilliseconds);
        Look();
    }
    return true;
}

// Hours are saved every two, from the first second of running on; the clock's jumps put that off.
bool Soak::SavedHours(std::string& trouble) {
    if (!(m_goals.days > 0.0)) {
        return true;
    }
    std::ostringstream content;
    content << std::ifstream(m_subject.Folder().Path() + "/var/log/vorn/data/analyzer.op.xml").rdbuf();
    const std::string text = content.str();
    const std::size_t item = text.find("\"ElectronicsRunHours\"");
    const std::size_t value = item == std::string::npos ? item : text.find(" value=\"", item);
    m_hours = value == std::string::npos ? -1.0 : std::strtod(text.c_str() + value + 8, nullptr);
    const double passed = m_subject.OnBoard().Seconds() / 3600.0;
    if (m_hours > passed || m_hours < passed - 4.0 - m_setBack / 3600.0) {
        trouble = "the saved hours don't fit the " + std::to_string(passed) + " that have passed";
        return false;
    }
    return true;
}

std::string Soak::Describe() const {
    char text[512];
    std::snprintf(
        text, sizeof text,
        "soak: %.2f simulated days in %.0f s, %llu results reported, %llu of them in the day files, %llu "
        "without a card, %llu cut by a reset; %llu resets, %llu commands, %zu answers, %llu faults, %llu ends "
        "by a broken pipe, %.1f hours saved; ",
        m_subject.OnBoard().Seconds() / SecondsOfDay, std::chrono::duration<double>(Clock::now() - m_start).count(),
        static_cast<unsigned long long>(m_ledger.Reported()), static_cast<unsigned long long>(m_ledger.Recorded()),
        static_cast<unsigned long long>(m_excused), static_cast<unsigned long long>(m_cut),
        static_cast<unsigned long long>(m_resets), static_cast<unsigned long long>(m_commands), m_answers,
        static_cast<unsigned long long>(m_faults), static_cast<unsigned long long>(m_subject.BrokenPipes()), m_hours);
    return text + m_series.Describe();
}

}  // namespace Bench
