#include "Bench/Tools/Measure/CycleWaits.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

#include "System/Messages/StepType.h"

namespace Bench {

namespace {

constexpr const char* TrialStep = "LEDAdjustment";

constexpr double ReadingMilliseconds = 250.0;
constexpr double StepsPerTurn = 1600.0;
constexpr double DegreesPerTurn = 360.0;
constexpr double DegreesPastHome = 5.0;

using Items = std::map<std::string, std::string>;  // value by name

double Number(const Items& items, const std::string& name) { return std::strtod(items.at(name).c_str(), nullptr); }

bool Flag(const Items& items, const std::string& name) { return items.at(name) == "true"; }

bool HasAll(const Items& items, const std::string& owner, std::initializer_list<const char*> names,
            std::string& error) {
    for (const char* name : names) {
        if (items.count(name) == 0) {
            error.append(owner).append(" has no item \"").append(name).append("\"");
            return false;
        }
    }
    return true;
}

bool ReadStep(const std::string& name, const Items& items, StepSettings& step, std::string& error) {
    if (!HasAll(items, "the step \"" + name + "\"",
                {"Duration", "Stirring On", "Sample Valve On", "ADC Monitor On", "Find Start Position", "Motor Angle",
                 "Motor Speed"},
                error)) {
        return false;
    }
    step.name = name;
    step.duration = Number(items, "Duration");
    step.sampled = Flag(items, "ADC Monitor On");
    step.stirred = Flag(items, "Stirring On");
    step.valveOpen = Flag(items, "Sample Valve On");
    step.homed = Flag(items, "Find Start Position");
    step.motorAngle = Number(items, "Motor Angle");
    step.motorSpeed = Number(items, "Motor Speed");
    return true;
}

int ReadingsOf(const StepSettings& step) { return static_cast<int>(std::ceil(step.duration / ReadingMilliseconds)); }

// To the next rising edge of the flag, at a whole number of steps per second, and 5 degrees past it.
double HomingMilliseconds(double pumpAngle, double speed) {
    const double frequency = std::floor(speed * StepsPerTurn / DegreesPerTurn);
    const double toEdge = (DegreesPerTurn - pumpAngle) / DegreesPerTurn * StepsPerTurn / frequency * 1000.0;
    return toEdge + std::floor(DegreesPastHome / speed * 1000.0);
}

// A turn takes the time of its whole angle, even if less of it is left, but not longer than the step.
double TurnMilliseconds(const StepSettings& step) {
    const bool slow = std::floor(step.motorAngle) < step.motorSpeed;
    const double whole = slow && step.motorAngle < 1.0 ? 0.0 : step.motorAngle / step.motorSpeed * 1000.0;
    return std::floor(std::min(whole, step.duration));
}

double PumpMilliseconds(const StepSettings& step, double& pumpAngle) {
    if (step.motorSpeed == 0.0 || TurnMilliseconds(step) < 1.0) {
        return 0.0;
    }
    if (step.homed) {
        const double homing = HomingMilliseconds(pumpAngle, step.motorSpeed);
        pumpAngle = DegreesPastHome;
        return homing;
    }
    pumpAngle = DegreesPastHome + step.motorAngle;  // angles count from the end of homing
    return TurnMilliseconds(step);
}

double WorkersMilliseconds(const StepSettings& step, double switchDelay, double& pumpAngle) {
    return std::max({step.sampled ? ReadingsOf(step) * ReadingMilliseconds : 0.0, step.stirred ? step.duration : 0.0,
                     step.valveOpen ? switchDelay : 0.0, PumpMilliseconds(step, pumpAngle)});
}

// Below a second exact, above only whole seconds.
double SettleMilliseconds(double settle) { return settle < 1000.0 ? settle : std::floor(settle / 1000.0) * 1000.0; }

}  // namespace

std::optional<CycleSettings> ReadCycleSettings(const SettingsFile& file, std::string& error) {
    std::map<std::string, Items> steps;  // "" outside of the steps
    for (const SettingsItem& item : file.Items()) {
        steps[item.step].emplace(item.name, item.value);  // the first of a name counts
        if (!item.step.empty() && FindStepType(item.step) == NO_STEP) {
            error = "the configuration has an unknown step \"" + item.step + "\"";
            return std::nullopt;
        }
    }
    if (!HasAll(steps[""], "the configuration", {"LEDSettleTime", "SampleSwitchDelay"}, error)) {
        return std::nullopt;
    }
    CycleSettings settings;
    settings.settle = Number(steps[""], "LEDSettleTime");
    settings.switchDelay = Number(steps[""], "SampleSwitchDelay");
    for (int step = 0; step < StepCount; ++step) {
        const std::string name = GetStepInternalName(static_cast<StepType>(step)).Text();
        const auto items = steps.find(name);
        if (items == steps.end()) {
            error = "the configuration has no step \"" + name + "\"";
            return std::nullopt;
        }
        if (!ReadStep(name, items->second, settings.steps.emplace_back(), error)) {
            return std::nullopt;
        }
    }
    return settings;
}

CycleWaits PrescribedWaits(const CycleSettings& settings, double pumpAngle, int trials) {
    CycleWaits waits{0.0, pumpAngle};
    for (const StepSettings& step : settings.steps) {
        if (step.name == TrialStep) {
            waits.milliseconds +=
                trials * (SettleMilliseconds(settings.settle) + ReadingsOf(step) * ReadingMilliseconds);
        } else {
            waits.milliseconds += WorkersMilliseconds(step, settings.switchDelay, waits.pumpAngle);
        }
    }
    return waits;
}

int ReadingsOfTrial(const CycleSettings& settings) {
    for (const StepSettings& step : settings.steps) {
        if (step.name == TrialStep) {
            return ReadingsOf(step);
        }
    }
    return 0;
}

int PrescribedReadings(const CycleSettings& settings, int trials) {
    int readings = 0;
    for (const StepSettings& step : settings.steps) {
        if (step.sampled) {
            readings += step.name == TrialStep ? trials * ReadingsOf(step) : ReadingsOf(step);
        }
    }
    return readings;
}

}  // namespace Bench
