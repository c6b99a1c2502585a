#include "System/MeasurementEngine/SampleStatistics.h"

#include <cmath>
#include <numeric>
#include <span>

namespace {

using Counts = std::span<const double>;

double Mean(Counts counts) {
    if (counts.empty()) {
        return 0.0;
    }
    return std::accumulate(counts.begin(), counts.end(), 0.0) / static_cast<double>(counts.size());
}

double Deviation(Counts counts) {
    if (counts.empty()) {
        return 0.0;
    }
    const double mean = Mean(counts);
    double squares = 0.0;
    for (const double count : counts) {
        squares += (count - mean) * (count - mean);
    }
    return std::sqrt(squares / static_cast<double>(counts.size()));
}

Counts Kept(const std::vector<double>& sorted, std::uint32_t high, std::uint32_t low) {
    const std::uint64_t rejected = std::uint64_t{high} + low;
    if (rejected >= sorted.size()) {
        return {};
    }
    return Counts(sorted).subspan(low, sorted.size() - static_cast<std::size_t>(rejected));
}

}  // namespace

double RawMean(const std::vector<double>& counts) { return Mean(counts); }

double RawDeviation(const std::vector<double>& counts) { return Deviation(counts); }

double TrimmedMean(const std::vector<double>& sorted, std::uint32_t high, std::uint32_t low) {
    return Mean(Kept(sorted, high, low));
}

double TrimmedDeviation(const std::vector<double>& sorted, std::uint32_t high, std::uint32_t low) {
    return Deviation(Kept(sorted, high, low));
}
