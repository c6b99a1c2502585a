// A request to test the board (SubType 0), and the verdict (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

enum HardwareTestSelector : std::int32_t {
    BOARD_VOLTAGES_TEST = 1,
    AUDIO_AMPLIFIER_TEST = 2,
    REAGENT_MOTOR_TEST = 3,
    STIR_MOTOR_TEST = 4,
    ALL_HARDWARE_TESTS = 5,
};

class PeriodicHardwareTestMessage
    : public DataMessageOf<PeriodicHardwareTestMessage, PERIODIC_HARDWARE_TEST_DATA_MESSAGE> {
public:
    // A HardwareTestSelector.
    std::int32_t GetTestSelector() const { return m_testSelector; }
    void SetTestSelector(std::int32_t testSelector) { m_testSelector = testSelector; }

    // 0: failed; any other value: passed.
    std::uint8_t GetVerdict() const { return m_verdict; }
    void SetVerdict(std::uint8_t verdict) { m_verdict = verdict; }

private:
    std::int32_t m_testSelector = 0;
    std::uint8_t m_verdict = 0;
};
