#include "System/Messages/MeasurementStepDataMessage.h"

MeasurementStepDataMessage& MeasurementStepDataMessage::operator=(const MeasurementStepDataMessage& other) {
    if (this != &other) {
        DataMessageOf::operator=(other);
        SetStepResults(other.GetStepResults());
    }
    return *this;
}

void MeasurementStepDataMessage::SetStepResults(const StepResults* results) {
    m_results = results == nullptr ? nullptr : std::make_unique<StepResults>(*results);
}
