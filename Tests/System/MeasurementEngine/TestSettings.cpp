#include "Tests/System/MeasurementEngine/TestSettings.h"

#include <gtest/gtest.h>

#include <fstream>

#include "Frameworks/Configuration/SingletonBase.h"
#include "System/Messages/StepType.h"

namespace {

void WriteItem(std::ostream& file, const std::string& name, const std::string& value) {
    file << "<INFO_ITEM name=\"" << name << "\" description=\"d\" type=\"t\" unitOfMeasure=\"u\" value=\"" << value
         << "\"/>\n";
}

}  // namespace

TestSettings::TestSettings() {
    keys = {
        {"PrimeCycleCount", "2"},
        {"EmitterChannel", "0"},
        {"EmitterDefaultFrequency", "1000.0"},
        {"EmitterDefaultDutyCycle", "40.0"},
        {"ColorimeterCellConstant", "2.4"},
        {"SampleSwitchDelay", "0"},
        {"SampleSwitchDutyCycle", "40.0"},
        {"FindHomeSpeed", "30.0"},
        {"DarkHighRejectNum", "0"},
        {"DarkLowRejectNum", "0"},
        {"RefHighRejectNum", "0"},
        {"RefLowRejectNum", "0"},
        {"SampleHighRejectNum", "0"},
        {"SampleLowRejectNum", "0"},
        {"DetectorOutputLevel", "2000000.0"},
        {"DetectorOutputLevelDev", "25.0"},
        {"LEDDutycycleAdjustStep", "2.0"},
        {"LEDSettleTime", "0"},
    };
    for (int step = 0; step < StepCount; ++step) {
        steps.push_back({{"Step", GetStepInternalName(static_cast<StepType>(step)).Text()},
                         {"Duration", "0"},
                         {"LED On", "false"},
                         {"Stirring On", "false"},
                         {"Sample Valve On", "false"},
                         {"ADC Monitor On", "false"},
                         {"Find Start Position", "false"},
                         {"Motor Angle", "0.0"},
                         {"Motor Speed", "0"}});
    }
}

std::map<std::string, std::string>& TestSettings::Step(const std::string& name) {
    for (auto& step : steps) {
        if (step.at("Step") == name) {
            return step;
        }
    }
    ADD_FAILURE() << "no step " << name;
    return steps.front();
}

bool TestSettings::Install(const std::string& folder) const {
    const std::string path = folder + "/test.conf.xml";
    std::ofstream file(path);
    file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ROOT_ANALYZER>\n<MEASUREMENT_ENGINE_INFO>\n";
    for (const auto& [key, value] : keys) {
        WriteItem(file, key, value);
    }
    file << "<MEASUREMENT_STEP_LIST>\n<MEASUREMENT_STEP_ORDER>\n";
    WriteItem(file, "Step 0", "HomePosition");
    file << "</MEASUREMENT_STEP_ORDER>\n";
    for (const auto& step : steps) {
        file << "<MEASUREMENT_STEP>\n";
        for (const auto& [name, value] : step) {
            WriteItem(file, name, value);
        }
        file << "</MEASUREMENT_STEP>\n";
    }
    file << "</MEASUREMENT_STEP_LIST>\n</MEASUREMENT_ENGINE_INFO>\n</ROOT_ANALYZER>\n";
    file.close();
    return InstallSettings(path);
}

bool InstallSettings(const std::string& path) {
    auto settings = std::make_unique<SystemConfigurationFile>();
    if (!settings->Load(path)) {
        return false;
    }
    SystemConfigurationFile* loaded = settings.get();
    return SingletonBase::SetSystemConfiguration(std::move(settings)) && loaded->GetXML() &&
           loaded->GetMeasurementEngineConfigInfo() != nullptr;
}

void RemoveSettings() { SingletonBase::SetSystemConfiguration(nullptr); }
