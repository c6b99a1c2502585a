#include "Bench/Tools/Endurance/Soak.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "Bench/Common/Text.h"

namespace Bench {

namespace {

constexpr double SecondsOfDay = 86400.0;

// Simulated seconds.
constexpr double Tick = 1.0;
constexpr double FootprintInterval = 60.0;
constexpr double RecordTimeout = 60.0;  // until a record is on the card
constexpr double ResetTimeout = 200.0;  // until a reset is done: a running step ends first
constexpr double CardFaultMargin = 60.0;
constexpr double TimeToMeasure = 1500.0;
constexpr std::uint64_t CyclesToMeasure = 3;  // the reagent is back at the cell by then
constexpr double MaxError = 0.001;            // mg/l
constexpr double RestAfterReset = 40.0;       // both links are connected, and the first priming is still to come
constexpr int SoakResetRequests = 30;         // one together with another button is lost

// Simulated seconds without a result until the analyzer is set to running, is reset, and has failed.
constexpr double RunAgain = 1500.0;
constexpr double ResetAgain = 6000.0;
constexpr double GiveUp = 60000.0;

bool IsCardFault(const std::string& fault) { return fault.starts_with("card-"); }

}  // namespace

Soak::Soak(SystemUnderTest& system, Draw draw, const SoakGoals& goals)
    : m_system(system),
      m_goals(goals),
      m_draw(std::move(draw)),
      m_next(m_draw()),
      m_ledger(system.Card(), system.Settings().measurementFileName),
      m_events(system.Folder() + "/events") {}

bool Soak::IsDone() const {
    return m_ledger.Recorded() >= m_goals.cycles && m_resets >= m_goals.resets &&
           m_system.OnBoard().Seconds() >= m_goals.days * SecondsOfDay;
}

bool Soak::Run(const volatile int& stop, std::string& trouble) {
    if (!AtRest(m_first, trouble)) {
        return false;
    }
    while (!IsDone() && stop == 0) {
        if (!Step(trouble)) {
            return false;
        }
        m_system.LetPass(Tick);
    }
    return SettleResults(trouble) && SavedHours(trouble) && AtRest(m_last, trouble) && JudgeGrowth(trouble);
}

// What the program holds depends on what it does at that moment. After a reset it does the same each time.
bool Soak::AtRest(std::optional<Footprint>& footprint, std::string& trouble) {
    for (const ActiveFault& fault : m_system.OnBoard().Faults()) {
        m_system.OnBoard().ClearFault(fault.text.substr(0, fault.text.find_first_of("=@")), trouble);
    }
    m_system.LetPass(RestAfterReset);
    if (!Reset(false, trouble)) {
        return false;
    }
    m_system.LetPass(RestAfterReset);
    footprint = m_system.Measure();
    return m_system.StaysUp(trouble);
}

bool Soak::EndsWell(std::string& trouble) {
    const std::uint64_t before = m_ledger.Recorded();
    const double end = m_system.OnBoard().Seconds() + TimeToMeasure;
    while (m_ledger.Recorded() < before + CyclesToMeasure) {
        m_system.AtFrontEnd().SendCode(FrontEnd::Running);  // without effect if it is
        m_system.LetPass(RestAfterReset);
        Poll();
        if (!m_system.StaysUp(trouble) || !JudgeResults(trouble)) {
            return false;
        }
        if (m_system.OnBoard().Seconds() > end) {
            trouble = Format("no %llu results in the %.0f s after all faults",
                             static_cast<unsigned long long>(CyclesToMeasure), TimeToMeasure);
            return false;
        }
    }
    const double error = m_ledger.LastChlorine() - m_system.OnBoard().Settings().chlorine;
    if (std::abs(error) > MaxError) {
        trouble = Format("chlorine %.4f after all faults, in the water %.4f", m_ledger.LastChlorine(),
                         m_system.OnBoard().Settings().chlorine);
    }
    return trouble.empty();
}

bool Soak::JudgeGrowth(std::string& trouble) const {
    if (m_first && m_last && (m_last->threads != m_first->threads || m_last->descriptors != m_first->descriptors)) {
        trouble = Format("after a reset it had %lld threads and %lld descriptors, at the end %lld and %lld",
                         static_cast<long long>(m_first->threads), static_cast<long long>(m_first->descriptors),
                         static_cast<long long>(m_last->threads), static_cast<long long>(m_last->descriptors));
    } else if (m_series.Size() >= ReadingsToJudge && !m_series.Growths().front().IsFlat()) {
        trouble = "the memory of the program grew";
    }
    return trouble.empty();
}

bool Soak::Step(std::string& trouble) {
    Measure();
    Poll();
    if (!m_system.StaysUp(trouble) || !JudgeResults(trouble) || !KeepGoing(trouble)) {
        return false;
    }
    const double now = m_system.OnBoard().Seconds();
    if (!m_next || m_next->second + m_delay > now) {
        return true;
    }
    m_delay = now - m_next->second;
    const bool isWell = Perform(*m_next, trouble);
    m_delay += m_next->action == SoakAction::Reset ? m_system.OnBoard().Seconds() - now : 0.0;
    m_next = m_draw();
    return isWell;
}

void Soak::Measure() {
    const double now = m_system.OnBoard().Seconds();
    if (now < m_nextReading) {
        return;
    }
    m_nextReading = now + FootprintInterval;
    if (const std::optional<Footprint> footprint = m_system.Measure()) {
        m_series.Add(*footprint);
    }
    m_system.LimitOutput(MaxOutputBytes);
}

void Soak::Poll() {
    std::vector<FrontEndFrame> frames;
    while (std::optional<FrontEndFrame> frame =
               m_system.AtFrontEnd().WaitForValue("ChlorineValue", std::nullopt, m_frames, 0.0)) {
        frames.push_back(std::move(*frame));
    }
    const double now = m_system.OnBoard().Seconds();
    if (!frames.empty()) {
        m_lastResult = now;
        m_lastReset = now;
    }
    m_ledger.Update(frames, now);
    while (m_system.AtStation().TakeAnswer(0.0)) {
        ++m_answers;
    }
}

bool Soak::Perform(const SoakEvent& event, std::string& trouble) {
    m_events << event.Describe() << std::endl;
    Board& board = m_system.OnBoard();
    switch (event.action) {
        case SoakAction::Button:
            ++m_commands;
            m_system.AtFrontEnd().SendCode(event.code);
            return true;
        case SoakAction::Station:
            ++m_commands;
            m_system.AtStation().SendRequest(event.request);
            return true;
        case SoakAction::FaultOn:
            ++m_faults;
            m_cardFaults += IsCardFault(event.fault) ? 1 : 0;
            m_setBack += event.fault.starts_with("clock-back=") ? std::strtod(event.fault.c_str() + 11, nullptr) : 0.0;
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

// A reset drops what is still queued for logging, so all reported results have to be on the card first.
bool Soak::Reset(bool byStation, std::string& trouble) {
    if (!SettleResults(trouble)) {
        return false;
    }
    m_resetBegin = m_system.OnBoard().Seconds();
    for (int request = 0; request < SoakResetRequests; ++request) {
        // The station's command works only in the test state.
        if (TryReset(byStation && request == 0)) {
            ++m_resets;
            Poll();
            m_resetEnd = m_system.OnBoard().Seconds();
            return true;
        }
        if (!m_system.StaysUp(trouble)) {
            return false;
        }
    }
    trouble = "no reset on request";
    return false;
}

bool Soak::TryReset(bool byStation) {
    FrontEnd& frontEnd = m_system.AtFrontEnd();
    const std::size_t generation = frontEnd.Connections();
    TestRequest request;
    request.command = 860;
    if (!byStation || !m_system.AtStation().SendRequest(request)) {
        frontEnd.SendCode(FrontEnd::Reset);
    }
    const double end = m_system.OnBoard().Seconds() + ResetTimeout;
    std::string reason;
    while (frontEnd.Connections() == generation && m_system.OnBoard().Seconds() < end && !m_system.HasEnded(reason)) {
        m_system.LetPass(Tick);
    }
    return frontEnd.Connections() > generation;
}

bool Soak::KeepGoing(std::string& trouble) {
    if (m_goals.cycles == 0 && !(m_goals.days > 0.0)) {
        return true;
    }
    const double now = m_system.OnBoard().Seconds();
    if (now - m_lastResult > GiveUp) {
        trouble = "no result in " + std::to_string(static_cast<int>(GiveUp)) + " simulated seconds";
        return false;
    }
    if (now - m_lastReset > ResetAgain) {
        m_lastReset = now;
        return Reset(false, trouble);
    }
    if (now - std::max(m_lastResult, m_runRequested) > RunAgain) {
        m_runRequested = now;
        m_system.AtFrontEnd().SendCode(FrontEnd::Running);
    }
    return true;
}

bool Soak::IsExcused(const ResultLedger::Missing& result) const {
    return m_cardFaults > 0 || result.seconds < m_cardFaultEnd + CardFaultMargin;
}

bool Soak::JudgeResults(std::string& trouble) {
    const double now = m_system.OnBoard().Seconds();
    while (!m_ledger.Pending().empty()) {
        const ResultLedger::Missing& oldest = m_ledger.Pending().front();
        if (now - oldest.seconds < RecordTimeout) {
            break;
        }
        if (oldest.seconds >= m_resetBegin && oldest.seconds <= m_resetEnd) {
            ++m_cut;
        } else if (IsExcused(oldest)) {
            ++m_excused;
        } else {
            trouble = "the result " + oldest.date + " is in no day file";
            return false;
        }
        m_ledger.DropOldest();
    }
    trouble = m_ledger.Trouble();
    return trouble.empty();
}

// Waits for the records of the results reported so far, unless the card has a fault.
bool Soak::SettleResults(std::string& trouble) {
    const double begin = m_system.OnBoard().Seconds();
    const auto isAwaited = [&](const ResultLedger::Missing& result) {
        return result.seconds <= begin && !IsExcused(result);
    };
    while (std::any_of(m_ledger.Pending().begin(), m_ledger.Pending().end(), isAwaited)) {
        if (!JudgeResults(trouble)) {
            return false;
        }
        m_system.LetPass(Tick);
        Poll();
    }
    return true;
}

// The hours are saved every two hours of running; each jump of the clock delays that.
bool Soak::SavedHours(std::string& trouble) {
    if (!(m_goals.days > 0.0)) {
        return true;
    }
    SettingsFile saved;
    std::string error;
    saved.Read(m_system.Folder() + "/var/log/vorn/data/analyzer.op.xml", error);
    const std::optional<std::string> hours = saved.Find("ElectronicsRunHours");
    m_hours = hours ? std::strtod(hours->c_str(), nullptr) : -1.0;
    const double passed = m_system.OnBoard().Seconds() / 3600.0;
    if (m_hours > passed || m_hours < passed - 4.0 - m_setBack / 3600.0) {
        trouble = "the saved hours don't match the " + std::to_string(passed) + " that have passed";
        return false;
    }
    return true;
}

std::string Soak::DescribeFootprints() const {
    const Growth memory = m_series.Growths().front();
    const Footprint first = m_first.value_or(Footprint{});
    const Footprint last = m_last.value_or(first);
    return Format("after a reset %lld threads and %lld descriptors, at the end %lld and %lld; memory %lld to %lld KiB",
                  static_cast<long long>(first.threads), static_cast<long long>(first.descriptors),
                  static_cast<long long>(last.threads), static_cast<long long>(last.descriptors),
                  static_cast<long long>(memory.first), static_cast<long long>(memory.last));
}

std::string Soak::Describe() const {
    return Format(
               "soak: %.2f simulated days, %llu results reported, %llu of them in the day files, %llu "
               "without a card, %llu cut by a reset; %llu resets, %llu commands, %zu answers, %llu faults, %llu ends "
               "by a broken pipe, %.1f hours saved; ",
               m_system.OnBoard().Seconds() / SecondsOfDay, static_cast<unsigned long long>(m_ledger.Reported()),
               static_cast<unsigned long long>(m_ledger.Recorded()), static_cast<unsigned long long>(m_excused),
               static_cast<unsigned long long>(m_cut), static_cast<unsigned long long>(m_resets),
               static_cast<unsigned long long>(m_commands), m_answers, static_cast<unsigned long long>(m_faults),
               static_cast<unsigned long long>(m_system.BrokenPipes()), m_hours) +
           DescribeFootprints();
}

}  // namespace Bench
