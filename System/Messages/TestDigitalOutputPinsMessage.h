// A request to set an output pin (SubType 0), and its result (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class TestDigitalOutputPinsMessage
    : public DataMessageOf<TestDigitalOutputPinsMessage, TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE> {
public:
    // Bank times 32 plus pin.
    std::uint16_t GetPinId() const { return m_pinId; }
    void SetPinId(std::uint16_t pinId) { m_pinId = pinId; }

    // 0 requests a write, any other value a read.
    std::uint8_t GetReadMarker() const { return m_readMarker; }
    void SetReadMarker(std::uint8_t readMarker) { m_readMarker = readMarker; }

    StdString GetValue() const { return m_value; }
    void SetValue(const StdString& value) { m_value = value; }

private:
    std::uint16_t m_pinId = 0;
    std::uint8_t m_readMarker = 1;
    StdString m_value;
};
