#include "Bench/Tools/Measure/Fixture.h"

#include <set>

#include "Frameworks/Utilities/Enumerations.h"

namespace Bench {

namespace {

constexpr double TimeoutSeconds = 120.0;  // real
constexpr double FastSpeed = 50.0;
constexpr std::int64_t StartSeconds = 1798718400;  // 2026-12-31 12:00:00 UTC, far from any midnight

// The last two, after ten seconds of sleep each. Of the others one line may be lost, as one line of every start is.
constexpr ControllerType LastControllers[] = {USER_INTERFACE_DATA_CONTROL, MEASUREMENT_ENGINE};

}  // namespace

std::unique_ptr<Fixture> Fixture::StartBare(const Places& places, const SettingsFile& settings, std::string& error) {
    std::unique_ptr<Fixture> fixture(new Fixture);
    if (!fixture->ReadSettings(places, error)) {
        return nullptr;
    }
    fixture->Settings().file = settings;
    BoardSetup setup;
    setup.startSeconds = StartSeconds;
    if (!fixture->MakeBoard(setup, error) || !fixture->MakePeers(error) || !fixture->BenchedAnalyzer::Start(error)) {
        return nullptr;
    }
    if (!fixture->OnBoard().WaitUntil([&fixture] { return fixture->Process() > 0; }, TimeoutSeconds)) {
        error = "can't find the process of " + places.program;
        return nullptr;
    }
    return fixture;
}

std::unique_ptr<Fixture> Fixture::Start(const Places& places, const SettingsFile& settings, std::string& error) {
    std::unique_ptr<Fixture> fixture = StartBare(places, settings, error);
    if (!fixture) {
        return nullptr;
    }
    fixture->SetFast(true);
    if (!fixture->WaitForConnection(0)) {
        error = "the analyzer does not connect to the front end; see the log and the output in " + places.bench;
        return nullptr;
    }
    fixture->SetFast(false);
    return fixture;
}

void Fixture::SetFast(bool isFast) {
    OnBoard().HoldSpeed(false);
    OnBoard().SetSpeed(isFast ? FastSpeed : 1.0);
    OnBoard().HoldSpeed(!isFast);
}

double Fixture::WaitForIdle() {
    double seconds = -1.0;
    const auto isIdle = [this, &seconds] {
        if (AreAllIdle()) {
            seconds = OnBoard().Seconds();
        }
        return seconds >= 0.0;
    };
    OnBoard().WaitUntil(isIdle, TimeoutSeconds);
    OnBoard().ClearLog();
    return seconds;
}

bool Fixture::AreAllIdle() const {
    std::set<int> idle;
    for (const LogLine& line : OnBoard().Log()) {
        for (int controller = 0; controller < ControllerCount; ++controller) {
            if (line.text.ends_with(std::string(" :: Changing to IDLE_STATE State for - ") +
                                    ControllerNames[controller].Text())) {
                idle.insert(controller);
            }
        }
    }
    return idle.size() + 1 >= ControllerCount && idle.contains(LastControllers[0]) && idle.contains(LastControllers[1]);
}

bool Fixture::WaitForConnection(std::size_t connections) const {
    return AtFrontEnd().WaitForConnection(connections + 1, TimeoutSeconds);
}

}  // namespace Bench
