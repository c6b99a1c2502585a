#include "Bench/Common/AnalyzerSettings.h"

#include <cmath>
#include <cstdlib>

namespace Bench {

bool ReadAnalyzerSettings(const std::string& path, AnalyzerSettings& settings, std::string& error) {
    settings = AnalyzerSettings();
    if (!settings.file.Read(path, error)) {
        return false;
    }
    const std::string constant = settings.file.Find("ColorimeterCellConstant").value_or("");
    settings.cellConstant = std::strtod(constant.c_str(), nullptr);
    if (!(settings.cellConstant > 0.0) || !std::isfinite(settings.cellConstant)) {
        error = "the configuration " + path + " gives no ColorimeterCellConstant above 0";
        return false;
    }
    settings.measurementFileName = settings.file.Find("LogMeasurementDataFileName").value_or("");
    if (settings.measurementFileName.empty()) {
        error = "the configuration " + path + " gives no LogMeasurementDataFileName";
        return false;
    }
    const std::string text = settings.file.Find("TestServerPortNumber").value_or("");
    const unsigned long port = std::strtoul(text.c_str(), nullptr, 10);
    settings.testServerPort = port > 0 && port <= 0xFFFF ? static_cast<std::uint16_t>(port) : DefaultTestServerPort;
    for (const SettingsItem& item : settings.file.Items()) {
        const double seconds = std::fmax(0.0, std::strtod(item.value.c_str(), nullptr) / 1000.0);
        if (item.name == "Duration" && settings.durations.emplace(item.step, seconds).second) {
            settings.cycleSeconds += seconds;
        }
    }
    return true;
}

}  // namespace Bench
