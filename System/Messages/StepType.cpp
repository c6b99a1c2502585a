#include "System/Messages/StepType.h"

namespace {

struct StepNames {
    const char* internalName;
    const char* displayName;
};

// Indexed by StepType. Settings files and readers of logs know the names by this spelling.
constexpr StepNames Names[StepCount] = {
    {"HomePosition", "Verify Flag (Home Poisition)"},
    {"DarkCountMeasurement", "Dark Count Measurement"},
    {"NoLight", "Verify Flag (No Light)"},
    {"VerifyFlow", "Sample Flush & Delivery Verify Flow"},
    {"SampleFlushDelivery", "Sample Flush & Delivery"},
    {"SettlingTime", "Sample Settling Time"},
    {"LEDAdjustment", "LED Adjustment"},
    {"ReferenceOpticalMeasurement", "Reference Optical Measurement"},
    {"OptionalMitigation", "Optional Mitigation"},
    {"ReferenceSRDVMeasurement", "Reference SRDV Measurement"},
    {"PreMixStiring", "Pre Mix Stiring"},
    {"ReagentStaging", "Reagent Staging"},
    {"ReagentAddition", "Reagent Addition"},
    {"Light", "Verify Flag Sensor (Light)"},
    {"Mixing", "Mixing"},
    {"Debubbling", "Color Development (Debubbling)"},
    {"SampleOpticalMeasurement", "Reacted Sample Optical Measurement"},
    {"SampleSRDVMeasurement", "Sample SRDV Measurement"},
    {"SanityCheck", "Sanity Check"},
};

bool IsStep(StepType step) { return step >= 0 && step < StepCount; }

}  // namespace

StdString GetStepInternalName(StepType step) { return IsStep(step) ? Names[step].internalName : ""; }

StdString GetStepDisplayName(StepType step) { return IsStep(step) ? Names[step].displayName : ""; }

StepType FindStepType(const StdString& internalName) {
    for (int step = 0; step < StepCount; ++step) {
        if (internalName == Names[step].internalName) {
            return static_cast<StepType>(step);
        }
    }
    return NO_STEP;
}
