// The nineteen steps of a measurement cycle. The number is the order of execution.
#pragma once

#include <cstdint>

#include "Frameworks/Utilities/StdString.h"

enum StepType : std::int32_t {
    NO_STEP = -1,
    HOME_POSITION_STEP = 0,
    DARK_COUNT_MEASUREMENT_STEP = 1,
    NO_LIGHT_STEP = 2,
    VERIFY_FLOW_STEP = 3,
    SAMPLE_FLUSH_DELIVERY_STEP = 4,
    SETTLING_TIME_STEP = 5,
    LED_ADJUSTMENT_STEP = 6,
    REFERENCE_OPTICAL_MEASUREMENT_STEP = 7,
    OPTIONAL_MITIGATION_STEP = 8,
    REFERENCE_SRDV_MEASUREMENT_STEP = 9,
    PRE_MIX_STIRING_STEP = 10,
    REAGENT_STAGING_STEP = 11,
    REAGENT_ADDITION_STEP = 12,
    LIGHT_STEP = 13,
    MIXING_STEP = 14,
    DEBUBBLING_STEP = 15,
    SAMPLE_OPTICAL_MEASUREMENT_STEP = 16,
    SAMPLE_SRDV_MEASUREMENT_STEP = 17,
    SANITY_CHECK_STEP = 18,
};

inline constexpr int StepCount = 19;

// The name in the settings file, and the one in status texts and logs. Empty for a number out of range.
StdString GetStepInternalName(StepType step);
StdString GetStepDisplayName(StepType step);

// By the whole internal name, including its case; NO_STEP if there is none.
StepType FindStepType(const StdString& internalName);
