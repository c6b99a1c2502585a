#include "System/MeasurementEngine/DetectorProcessing.h"

#include <unistd.h>

#include <algorithm>

#include "Drivers/ConverterWord.h"
#include "Drivers/SpiDevice.h"
#include "Frameworks/Utilities/TimeSpec.h"
#include "System/MeasurementEngine/SampleStatistics.h"

namespace {

constexpr std::uint16_t DetectorCommand = ConverterCommandWord(0);
constexpr useconds_t ConversionTime = 250000;  // microseconds

std::uint32_t WordOf(const std::uint16_t (&words)[2]) { return (std::uint32_t{words[0]} << 16U) | words[1]; }

// In one number, since TimeInfo's own sum does not carry nanoseconds into seconds and would shorten a step of a
// fraction of a second.
std::int64_t NanoSecondsOf(const TimeInfo& time) {
    return std::int64_t{time.GetSeconds()} * NanoSecondsPerSecond + time.GetNanoSeconds();
}

std::vector<double> CountsOf(const DetectorSamples& samples) {
    std::vector<double> counts;
    counts.reserve(samples.size());
    for (const DetectorInformation& sample : samples) {
        counts.push_back(sample.GetCount());
    }
    return counts;
}

}  // namespace

std::int32_t CountOfDetectorWord(std::uint32_t word) {
    return word == NoConverterReading ? 0 : ConverterCount(ConverterReading(word));
}

void DetectorProcessing::SetStep(const StepParameters* step) {
    StepWorker::SetStep(step);
    ClearSamples();
}

bool DetectorProcessing::HasWork() const { return m_device != nullptr && GetStep()->adcMonitorOn; }

void DetectorProcessing::SampleDetector() {
    TimeInfo now;
    const std::int64_t end = NanoSecondsOf(now) + std::int64_t{GetStep()->duration} * 1000000;
    while (NanoSecondsOf(now) < end) {
        const double count = ReadDetectorCount();
        now.ResetTime();
        m_samples.emplace_back(count, now);
        m_counts.push_back(count);
    }
}

double DetectorProcessing::ReadDetectorCount() { return CountOfDetectorWord(m_device == nullptr ? 0 : ReadRawWord()); }

// Command, wait, result: without the chip select and the end of conversion that a guarded conversion has. A failed read
// leaves the zeros, which pass as the lowest count.
std::uint32_t DetectorProcessing::ReadRawWord() {
    std::uint16_t words[2] = {DetectorCommand, 0};
    m_device->Write(words, sizeof words[0]);
    const std::uint32_t sent = WordOf(words);
    usleep(ConversionTime);
    words[0] = 0;
    words[1] = 0;
    m_device->Read(words, sizeof words);
    const std::uint32_t word = WordOf(words);
    return word == sent ? NoConverterReading : word;  // the bus gave back the command
}

double DetectorProcessing::GetRawMean() const { return RawMean(CountsOf(m_samples)); }

double DetectorProcessing::GetRawDeviation() const { return RawDeviation(CountsOf(m_samples)); }

double DetectorProcessing::GetTrimmedMean(std::uint32_t high, std::uint32_t low) {
    SortCounts();
    return TrimmedMean(m_counts, high, low);
}

double DetectorProcessing::GetTrimmedDeviation(std::uint32_t high, std::uint32_t low) {
    SortCounts();
    return TrimmedDeviation(m_counts, high, low);
}

void DetectorProcessing::ClearSamples() {
    m_samples.clear();
    m_counts.clear();
}

void DetectorProcessing::SortCounts() { std::sort(m_counts.begin(), m_counts.end()); }
