#include "System/MeasurementEngine/MeasurementSettings.h"

#include "Frameworks/Configuration/ConfigurationBase.h"

namespace {

// One of the two members is set.
struct Row {
    const char* key;
    std::uint32_t MeasurementSettings::*whole;
    double MeasurementSettings::*real;
};

constexpr Row Whole(const char* key, std::uint32_t MeasurementSettings::*member) { return {key, member, nullptr}; }
constexpr Row Real(const char* key, double MeasurementSettings::*member) { return {key, nullptr, member}; }

constexpr Row Rows[] = {
    Whole("PrimeCycleCount", &MeasurementSettings::primeCycleCount),
    Whole("EmitterChannel", &MeasurementSettings::emitterChannel),
    Real("EmitterDefaultFrequency", &MeasurementSettings::emitterDefaultFrequency),
    Real("EmitterDefaultDutyCycle", &MeasurementSettings::emitterDefaultDutyCycle),
    Real("ColorimeterCellConstant", &MeasurementSettings::colorimeterCellConstant),
    Whole("SampleSwitchDelay", &MeasurementSettings::sampleSwitchDelay),
    Real("SampleSwitchDutyCycle", &MeasurementSettings::sampleSwitchDutyCycle),
    Real("FindHomeSpeed", &MeasurementSettings::findHomeSpeed),
    Whole("DarkHighRejectNum", &MeasurementSettings::darkHighRejectNum),
    Whole("DarkLowRejectNum", &MeasurementSettings::darkLowRejectNum),
    Whole("RefHighRejectNum", &MeasurementSettings::refHighRejectNum),
    Whole("RefLowRejectNum", &MeasurementSettings::refLowRejectNum),
    Whole("SampleHighRejectNum", &MeasurementSettings::sampleHighRejectNum),
    Whole("SampleLowRejectNum", &MeasurementSettings::sampleLowRejectNum),
    Real("DetectorOutputLevel", &MeasurementSettings::detectorOutputLevel),
    Real("DetectorOutputLevelDev", &MeasurementSettings::detectorOutputLevelDev),
    Real("LEDDutycycleAdjustStep", &MeasurementSettings::ledDutycycleAdjustStep),
    Whole("LEDSettleTime", &MeasurementSettings::ledSettleTime),
};

}  // namespace

void MeasurementSettings::Read(const ConfigurationBase& section) {
    for (const Row& row : Rows) {
        StdString value = section.RequireValue(row.key);
        if (row.whole != nullptr) {
            this->*row.whole = value.ToUnsigned();
        } else {
            this->*row.real = value.ToDouble();
        }
    }
}
