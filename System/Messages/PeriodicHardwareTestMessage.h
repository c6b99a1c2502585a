// A request to test the board (SubType 0), and the verdict (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class PeriodicHardwareTestMessage
    : public DataMessageOf<PeriodicHardwareTestMessage, PERIODIC_HARDWARE_TEST_DATA_MESSAGE> {
public:
    // 1 board voltages, 2 audio amplifier, 3 and 4 the motor stages, 5 all four.
    std::int32_t GetTestSelector() const { return m_testSelector; }
    void SetTestSelector(std::int32_t testSelector) { m_testSelector = testSelector; }

    // 0 bad, else good.
    std::uint8_t GetVerdict() const { return m_verdict; }
    void SetVerdict(std::uint8_t verdict) { m_verdict = verdict; }

private:
    std::int32_t m_testSelector = 0;
    std::uint8_t m_verdict = 0;
};
