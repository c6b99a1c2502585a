#include "Bench/Measure/CycleWaits.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

namespace Bench {

namespace {

constexpr const char* StepNames[] = {
    "HomePosition",
    "DarkCountMeasurement",
    "NoLight",
    "VerifyFlow",
    "SampleFlushDelivery",
    "SettlingTime",
    "LEDAdjustment",
    "ReferenceOpticalMeasurement",
    "OptionalMitigation",
    "ReferenceSRDVMeasurement",
    "PreMixStiring",
    "ReagentStaging",
    "ReagentAddition",
    "Light",
    "Mixing",
    "Debubbling",
    "SampleOpticalMeasurement",
    "SampleSRDVMeasurement",
    "SanityCheck",
};
constexpr const char* TrialStep = "LEDAdjustment";

constexpr double ReadingMilliseconds = 250.0;
constexpr double StepsPerTurn = 1600.0;
constexpr double DegreesPerTurn = 360.0;
constexpr double DegreesPastHome = 5.0;

using Items = std::map<std::string, std::string>;

std::string Attribute(const std::string& tag, const std::string& name) {
    const std::string start = " " + name + "=\"";
    const std::size_t at = tag.find(start);
    if (at == std::string::npos) {
        return "";
    }
    const std::size_t from = at + start.size();
    return tag.substr(from, tag.find('"', from) - from);
}

// Name and value of each item between two positions.
Items ItemsOf(const std::string& text, std::size_t from, std::size_t to) {
    const std::string start = "<INFO_ITEM";
    Items items;
    for (std::size_t at = text.find(start, from); at < to; at = text.find(start, at + 1)) {
        const std::string tag = text.substr(at, text.find('>', at) - at);
        items[Attribute(tag, "name")] = Attribute(tag, "value");
    }
    return items;
}

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

bool ReadStep(const Items& items, StepSettings& step, std::string& error) {
    step.name = items.count("Step") != 0 ? items.at("Step") : "";
    if (!HasAll(items, "the step \"" + step.name + "\"",
                {"Step", "Duration", "Stirring On", "Sample Valve On", "ADC Monitor On", "Find Start Position",
                 "Motor Angle", "Motor Speed"},
                error)) {
        return false;
    }
    step.duration = Number(items, "Duration");
    step.sampled = Flag(items, "ADC Monitor On");
    step.stirred = Flag(items, "Stirring On");
    step.valveOpen = Flag(items, "Sample Valve On");
    step.homed = Flag(items, "Find Start Position");
    step.motorAngle = Number(items, "Motor Angle");
    step.motorSpeed = Number(items, "Motor Speed");
    return true;
}

bool ReadSteps(const std::string& text, std::map<std::string, StepSettings>& steps, std::string& error) {
    const std::string start = "<MEASUREMENT_STEP>";
    for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at + 1)) {
        StepSettings step;
        if (!ReadStep(ItemsOf(text, at, text.find("</MEASUREMENT_STEP>", at)), step, error)) {
            return false;
        }
        steps.emplace(step.name, step);  // of two of one name the first counts
    }
    return true;
}

int ReadingsOf(const StepSettings& step) { return static_cast<int>(std::ceil(step.duration / ReadingMilliseconds)); }

// Up to the next rising edge of the flag, at the whole number of steps a second nearest below, and 5 degrees past it.
double HomingMilliseconds(double pumpAngle, double speed) {
    const double frequency = std::floor(speed * StepsPerTurn / DegreesPerTurn);
    const double toEdge = (DegreesPerTurn - pumpAngle) / DegreesPerTurn * StepsPerTurn / frequency * 1000.0;
    return toEdge + std::floor(DegreesPastHome / speed * 1000.0);
}

// A turn takes the time of the whole angle, however little of it is left, but no longer than the step.
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
    pumpAngle = DegreesPastHome + step.motorAngle;  // angles count from where homing ended
    return TurnMilliseconds(step);
}

double WorkersMilliseconds(const StepSettings& step, double switchDelay, double& pumpAngle) {
    return std::max({step.sampled ? ReadingsOf(step) * ReadingMilliseconds : 0.0, step.stirred ? step.duration : 0.0,
                     step.valveOpen ? switchDelay : 0.0, PumpMilliseconds(step, pumpAngle)});
}

// Below a second to the microsecond, from there on whole seconds alone.
double SettleMilliseconds(double settle) { return settle < 1000.0 ? settle : std::floor(settle / 1000.0) * 1000.0; }

}  // namespace

std::optional<CycleSettings> ReadCycleSettings(const std::string& configuration, std::string& error) {
    const Items all = ItemsOf(configuration, 0, configuration.size());
    std::map<std::string, StepSettings> steps;
    if (!HasAll(all, "the configuration", {"LEDSettleTime", "SampleSwitchDelay"}, error) ||
        !ReadSteps(configuration, steps, error)) {
        return std::nullopt;
    }
    CycleSettings settings;
    settings.settle = Number(all, "LEDSettleTime");
    settings.switchDelay = Number(all, "SampleSwitchDelay");
    for (const char* name : StepNames) {
        const auto step = steps.find(name);
        if (step == steps.end()) {
            error = std::string("the configuration has no step \"") + name + "\"";
            return std::nullopt;
        }
        settings.steps.push_back(step->second);
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
