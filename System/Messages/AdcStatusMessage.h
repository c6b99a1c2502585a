// A request for analog readings (SubType 0) and, with the readings, its response (SubType 1).
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"
#include "System/Messages/AdcStatusInfo.h"

class AdcStatusMessage : public DataMessageOf<AdcStatusMessage, ADC_STATUS_MESSAGE> {
public:
    const AdcStatusInfo& GetAdcStatusInfo() const { return m_info; }
    AdcStatusInfo& GetAdcStatusInfo() { return m_info; }
    void SetAdcStatusInfo(const AdcStatusInfo& info) { m_info = info; }

private:
    AdcStatusInfo m_info;
};
