// What the bench has to know of an analyzer configuration file: the calibration that its cell must follow and how long
// a cycle may take. Reads the file as text of its own, since the analyzer's reading of it is what the bench observes.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace Bench {

constexpr std::uint16_t UsualTestServerPort = 1200;

struct AnalyzerSettings {
    std::string text;                         // the whole file
    double cellConstant = 0.0;                // mg/l for one unit of absorbance
    std::string measurementFileName;          // set behind the date
    std::map<std::string, double> durations;  // seconds of each step, by its name in the file
    double cycleSeconds = 0.0;                // of all steps together
    std::uint16_t testServerPort = UsualTestServerPort;
};

// Gives the first item of that name in the text another value, digits and points alone; false where there is none.
bool SetSetting(std::string& text, const std::string& name, const std::string& value);

// False with a sentence in `error` that names the file and what is wrong in it.
bool ReadAnalyzerSettings(const std::string& path, AnalyzerSettings& settings, std::string& error);

}  // namespace Bench
