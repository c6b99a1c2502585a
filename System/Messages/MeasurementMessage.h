// The results of one measurement cycle, sent by the cycle's thread to the controllers that show, store or judge them.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"
#include "System/Messages/MeasurementResults.h"

class MeasurementMessage : public DataMessageOf<MeasurementMessage, MEASUREMENT_DATA_MESSAGE> {
public:
    const MeasurementResults& GetMeasurementResults() const { return m_results; }
    void SetMeasurementResults(const MeasurementResults& results) { m_results = results; }

private:
    MeasurementResults m_results;
};
