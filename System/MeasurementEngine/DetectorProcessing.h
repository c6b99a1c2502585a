// Samples the photodetector through the 24-bit converter for the length of a step, about four times a second, and
// computes the means afterwards. One object at a time reads the converter this way.
#pragma once

#include <vector>

#include "System/MeasurementEngine/StepWorker.h"
#include "System/Messages/DetectorInformation.h"

class SpiDevice;

class DetectorProcessing final : public StepWorker {
public:
    DetectorProcessing() : StepWorker("DetectorProcessing") {}

    void SetSpiDevice(SpiDevice* device) { m_device = device; }  // not owned; null: no readings
    void SetStep(const StepParameters* step) override;           // forgets the samples

    // Of the last step, in time order.
    const DetectorSamples& GetSamples() const { return m_samples; }

    double GetRawMean() const;  // 0.0 without a sample, as in all of these
    // Over all samples, divided by their number.
    double GetRawDeviation() const;
    // Without the `high` largest and `low` smallest; 0.0 if no sample remains.
    double GetTrimmedMean(std::uint32_t high, std::uint32_t low);
    double GetTrimmedDeviation(std::uint32_t high, std::uint32_t low);

private:
    bool HasWork() const override;
    void Prepare() override { ClearSamples(); }
    void Work() override { SampleDetector(); }

    void SampleDetector();
    double ReadDetectorCount();
    std::uint32_t ReadRawWord();
    void ClearSamples();
    void SortCounts();

    SpiDevice* m_device = nullptr;
    DetectorSamples m_samples;
    std::vector<double> m_counts;  // of the same samples; sorted by the trimmed means
};

// The signed count in the converter's 32-bit word: bits 5 to 28 with the sign in bit 29, which is set for a positive
// value. 0xFFFFFFFF is no reading and counts as 0.
std::int32_t CountOfDetectorWord(std::uint32_t word);
