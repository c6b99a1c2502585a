// A request to set a PWM channel (SubType 0), and its response with the same value (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

enum PwmFunction : std::uint16_t {
    ENABLE_PWM_FUNCTION = 0,
    FREQUENCY_PWM_FUNCTION = 1,
    DUTY_CYCLE_PWM_FUNCTION = 2,
};

inline constexpr std::uint16_t PwmFunctionCount = 3;

class TestPWMMessage : public DataMessageOf<TestPWMMessage, TEST_PWM_DATA_MESSAGE> {
public:
    // The channel times PwmFunctionCount, plus a PwmFunction.
    std::uint16_t GetId() const { return m_id; }
    void SetId(std::uint16_t id) { m_id = id; }

    std::uint8_t GetReadMarker() const { return m_readMarker; }
    void SetReadMarker(std::uint8_t readMarker) { m_readMarker = readMarker; }

    StdString GetValue() const { return m_value; }
    void SetValue(const StdString& value) { m_value = value; }

private:
    std::uint16_t m_id = 0;
    std::uint8_t m_readMarker = 1;
    StdString m_value;
};
