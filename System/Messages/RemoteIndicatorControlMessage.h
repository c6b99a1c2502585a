// The statuses that the remote indicator is to show (SubType 0), and its acknowledgement with all fields 0 (SubType 2).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class RemoteIndicatorControlMessage
    : public DataMessageOf<RemoteIndicatorControlMessage, REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE> {
public:
    // Statuses: 0 off, 1 normal, 2 alert, 3 alarm or failure.
    std::int32_t GetWaterStatus() const { return m_waterStatus; }
    void SetWaterStatus(std::int32_t waterStatus) { m_waterStatus = waterStatus; }

    std::int32_t GetAnalyzerStatus() const { return m_analyzerStatus; }
    void SetAnalyzerStatus(std::int32_t analyzerStatus) { m_analyzerStatus = analyzerStatus; }

    // 0 applies both statuses, 1 the analyzer's alone, any other value the water's alone.
    std::int32_t GetStatusSelect() const { return m_statusSelect; }
    void SetStatusSelect(std::int32_t statusSelect) { m_statusSelect = statusSelect; }

private:
    std::int32_t m_waterStatus = 0;
    std::int32_t m_analyzerStatus = 0;
    std::int32_t m_statusSelect = 0;
};
