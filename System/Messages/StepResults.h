// The detector samples of one step, with the parameters of the step. One thread at a time.
#pragma once

#include "Frameworks/Xml/XMLData.h"
#include "System/Messages/DetectorInformation.h"
#include "System/Messages/StepParameters.h"

class StepResults : public XMLData {
public:
    StepResults() = default;
    StepResults(DetectorSamples samples, const StepParameters& step) : m_samples(std::move(samples)), m_step(step) {}

    const DetectorSamples& GetSamples() const { return m_samples; }
    const StepParameters& GetStep() const { return m_step; }

    void SetSamples(DetectorSamples samples) { m_samples = std::move(samples); }
    void SetStep(const StepParameters& step) { m_step = step; }

private:
    DetectorSamples m_samples;
    StepParameters m_step;
};
