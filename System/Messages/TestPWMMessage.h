// A request to set a PWM channel (SubType 0), and its answer with the same value (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class TestPWMMessage : public DataMessageOf<TestPWMMessage, TEST_PWM_DATA_MESSAGE> {
public:
    // Channel times 3 plus function: 0 enable, 1 frequency, 2 duty cycle.
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
