// A line of progress on its way to the log and the front end. It stands here because MessageController sends it.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"
#include "Frameworks/Messaging/MeasurementStatusInfo.h"

class MeasurementStatusMessage : public DataMessageOf<MeasurementStatusMessage, MEASUREMENT_STATUS_MESSAGE> {
public:
    const MeasurementStatusInfo& GetStatusInfo() const { return m_statusInfo; }
    void SetStatusInfo(const MeasurementStatusInfo& statusInfo) { m_statusInfo = statusInfo; }

private:
    MeasurementStatusInfo m_statusInfo;
};
