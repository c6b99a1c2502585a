// A request to read an input pin (SubType 0), and the values read, one character each (SubType 1).
#pragma once

#include <vector>

#include "Frameworks/Messaging/DataMessageOf.h"

class TestDigitalInputPinsMessage
    : public DataMessageOf<TestDigitalInputPinsMessage, TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE> {
public:
    // Bank times 32 plus pin.
    std::uint16_t GetPinId() const { return m_pinId; }
    void SetPinId(std::uint16_t pinId) { m_pinId = pinId; }

    const std::vector<char>& GetValues() const { return m_values; }
    void SetValues(const std::vector<char>& values) { m_values = values; }

private:
    std::uint16_t m_pinId = 0;
    std::vector<char> m_values;
};
