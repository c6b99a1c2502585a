// What the bench needs from an analyzer configuration.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "Bench/Common/SettingsFile.h"

namespace Bench {

constexpr std::uint16_t DefaultTestServerPort = 1200;

struct AnalyzerSettings {
    SettingsFile file;
    double cellConstant = 0.0;                // mg/l for one unit of absorbance
    std::string measurementFileName;          // follows the date
    std::map<std::string, double> durations;  // seconds of each step, by its name in the file
    double cycleSeconds = 0.0;                // of all steps together
    std::uint16_t testServerPort = DefaultTestServerPort;
};

// Returns false with the reason in `error`, which names the file.
bool ReadAnalyzerSettings(const std::string& path, AnalyzerSettings& settings, std::string& error);

}  // namespace Bench
