// A request to test a part of the remote indicator (SubType 0), and the verdict (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

enum IndicatorTestId : std::int32_t {
    WHOLE_INDICATOR_TEST = 0,
    BLUE_ANALYZER_LED_TEST = 1,
    AMBER_ANALYZER_LED_TEST = 2,
    RED_ANALYZER_LED_TEST = 3,
    BLUE_WATER_LED_TEST = 4,
    AMBER_WATER_LED_TEST = 5,
    RED_WATER_LED_TEST = 6,
};

class RemoteIndicatorTestMessage : public DataMessageOf<RemoteIndicatorTestMessage, REMOTE_INDICATOR_TEST_MESSAGE> {
public:
    // An IndicatorTestId.
    std::int32_t GetTestId() const { return m_testId; }
    void SetTestId(std::int32_t testId) { m_testId = testId; }

    // 0: failed; any other value: passed.
    std::uint8_t GetVerdict() const { return m_verdict; }
    void SetVerdict(std::uint8_t verdict) { m_verdict = verdict; }

private:
    std::int32_t m_testId = 0;
    std::uint8_t m_verdict = 0;
};
