// A request to measure the remote indicator's cable. Nothing sends it yet, and it has no response.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class RemoteIndicatorCalculateCableLength
    : public DataMessageOf<RemoteIndicatorCalculateCableLength, REMOTE_INDICATOR_CALCULATE_CABLE_LENGTH_DATA_MESSAGE> {
public:
    std::int32_t GetValue() const { return m_value; }
    void SetValue(std::int32_t value) { m_value = value; }

private:
    std::int32_t m_value = 0;
};
