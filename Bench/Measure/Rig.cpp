#include "Bench/Measure/Rig.h"

#include <algorithm>
#include <set>

namespace Bench {

namespace {

constexpr double PatienceSeconds = 120.0;  // real: what takes longer hangs
constexpr double HurriedSpeed = 50.0;
constexpr std::int64_t StartOfRun = 1798718400;  // 2026-12-31 12:00:00 UTC, far from any midnight

constexpr const char* Controllers[] = {
    "SystemControl", "MessagingControl",       "LoggingControl", "DeviceMonitor",     "UserInterfaceDataControl",
    "SystemMonitor", "RemoteIndicatorControl", "TestInterface",  "MeasurementEngine",
};
// The two that come last, behind ten seconds of sleep each. Of the others one line may be lost, as one line of every
// start is.
constexpr const char* LastControllers[] = {"UserInterfaceDataControl", "MeasurementEngine"};

}  // namespace

std::unique_ptr<Rig> Rig::StartBare(const RigPlaces& places, const std::string& configuration, std::string& error) {
    std::unique_ptr<Rig> rig(new Rig);
    if (!rig->Prepare(places, configuration, error) ||
        !rig->m_analyzer.Start(places.program, places.library, rig->m_folder.Path(), rig->m_folder.Path() + "/output",
                               error)) {
        return nullptr;
    }
    if (!rig->m_board->WaitUntil([&rig] { return rig->Process() > 0; }, PatienceSeconds)) {
        error = "can't find the process of " + places.program;
        return nullptr;
    }
    return rig;
}

std::unique_ptr<Rig> Rig::Start(const RigPlaces& places, const std::string& configuration, std::string& error) {
    std::unique_ptr<Rig> rig = StartBare(places, configuration, error);
    if (!rig) {
        return nullptr;
    }
    rig->Hurry(true);
    if (!rig->WaitForLink(0)) {
        error = "the analyzer does not link to the front end; see the log and the output in " + places.bench;
        return nullptr;
    }
    rig->Hurry(false);
    return rig;
}

void Rig::Hurry(bool hurried) {
    m_board->HoldSpeed(false);
    m_board->SetSpeed(hurried ? HurriedSpeed : 1.0);
    m_board->HoldSpeed(!hurried);
}

bool Rig::Prepare(const RigPlaces& places, const std::string& configuration, std::string& error) {
    BoardSetup setup;
    setup.startSeconds = StartOfRun;
    if (!m_folder.Take(places.bench, error) || !m_folder.Furnish(configuration, places.clips, error)) {
        return false;
    }
    m_board = Bench::Board::Create(m_folder.Path(), setup, error);
    m_frontEnd = FrontEnd::Listen(0, error);
    return m_board && m_frontEnd && m_board->MapPort(FrontEnd::DefaultPort, m_frontEnd->Port());
}

double Rig::WaitForIdle() {
    double seconds = -1.0;
    m_board->WaitUntil(
        [this, &seconds] {
            if (AllIdle()) {
                seconds = m_board->Seconds();
            }
            return seconds >= 0.0;
        },
        PatienceSeconds);
    m_board->ClearLog();
    return seconds;
}

bool Rig::AllIdle() const {
    std::set<std::string> idle;
    for (const LogLine& line : m_board->Log()) {
        for (const char* controller : Controllers) {
            const std::string end = std::string(" :: Changing to IDLE_STATE State for - ") + controller;
            if (line.text.size() >= end.size() &&
                line.text.compare(line.text.size() - end.size(), end.size(), end) == 0) {
                idle.insert(controller);
            }
        }
    }
    return idle.size() + 1 >= std::size(Controllers) &&
           std::all_of(std::begin(LastControllers), std::end(LastControllers),
                       [&idle](const char* controller) { return idle.count(controller) != 0; });
}

bool Rig::WaitForLink(std::size_t links) const { return m_frontEnd->WaitForConnection(links + 1, PatienceSeconds); }

std::string WithItem(const std::string& configuration, const std::string& name, const std::string& value) {
    std::string text = configuration;
    const std::string item = "<INFO_ITEM name=\"" + name + "\"";
    const std::string start = " value=\"";
    for (std::size_t at = text.find(item); at != std::string::npos; at = text.find(item, at + 1)) {
        const std::size_t from = text.find(start, at) + start.size();
        text.replace(from, text.find('"', from) - from, value);
    }
    return text;
}

}  // namespace Bench
