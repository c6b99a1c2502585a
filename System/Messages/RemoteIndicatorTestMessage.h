// A request to test a part of the remote indicator (SubType 0), and the verdict (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class RemoteIndicatorTestMessage : public DataMessageOf<RemoteIndicatorTestMessage, REMOTE_INDICATOR_TEST_MESSAGE> {
public:
    // 0 the indicator as a whole, 1 to 6 its LEDs.
    std::int32_t GetTestId() const { return m_testId; }
    void SetTestId(std::int32_t testId) { m_testId = testId; }

    // 0 bad, else good.
    std::uint8_t GetVerdict() const { return m_verdict; }
    void SetVerdict(std::uint8_t verdict) { m_verdict = verdict; }

private:
    std::int32_t m_testId = 0;
    std::uint8_t m_verdict = 0;
};
