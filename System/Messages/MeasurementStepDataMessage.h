// The detector samples of one step, sent by the step controller for the logs.
#pragma once

#include <memory>

#include "Frameworks/Messaging/DataMessageOf.h"
#include "System/Messages/StepResults.h"

class MeasurementStepDataMessage : public DataMessageOf<MeasurementStepDataMessage, MEASUREMENT_STEP_DATA_MESSAGE> {
public:
    MeasurementStepDataMessage() = default;
    MeasurementStepDataMessage(const MeasurementStepDataMessage&) = delete;
    MeasurementStepDataMessage& operator=(const MeasurementStepDataMessage& other);
    ~MeasurementStepDataMessage() override = default;

    // Null until results are set. The message owns them.
    const StepResults* GetStepResults() const { return m_results.get(); }
    // Stores a copy; null removes the results.
    void SetStepResults(const StepResults* results);

private:
    std::unique_ptr<StepResults> m_results;
};
