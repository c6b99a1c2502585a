// The statuses that the remote indicator is to show (SubType 0), and its acknowledgement with all fields 0 (SubType 2).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

// Of the analyzer or of the water.
enum IndicatorStatus : std::int32_t {
    OFF_STATUS = 0,
    NORMAL_STATUS = 1,  // blue
    ALERT_STATUS = 2,   // amber
    ALARM_STATUS = 3,   // red; of the analyzer: failure
};

// The status that a message applies. Any other value applies the water's.
enum StatusSelect : std::int32_t { BOTH_STATUSES = 0, ANALYZER_STATUS = 1, WATER_STATUS = 2 };

class RemoteIndicatorControlMessage
    : public DataMessageOf<RemoteIndicatorControlMessage, REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE> {
public:
    // An IndicatorStatus.
    std::int32_t GetWaterStatus() const { return m_waterStatus; }
    void SetWaterStatus(std::int32_t waterStatus) { m_waterStatus = waterStatus; }

    // An IndicatorStatus.
    std::int32_t GetAnalyzerStatus() const { return m_analyzerStatus; }
    void SetAnalyzerStatus(std::int32_t analyzerStatus) { m_analyzerStatus = analyzerStatus; }

    // A StatusSelect.
    std::int32_t GetStatusSelect() const { return m_statusSelect; }
    void SetStatusSelect(std::int32_t statusSelect) { m_statusSelect = statusSelect; }

private:
    std::int32_t m_waterStatus = 0;
    std::int32_t m_analyzerStatus = 0;
    std::int32_t m_statusSelect = 0;
};
