// Means and deviations of one step's detector counts. Deviations are those of the population: divided by the number of
// samples. Any thread.
#pragma once

#include <cstdint>
#include <vector>

// 0.0 without a sample.
double RawMean(const std::vector<double>& counts);
double RawDeviation(const std::vector<double>& counts);

// Without the `high` largest and the `low` smallest. 0.0 if no sample remains; the counts must be sorted,
// ascending.
double TrimmedMean(const std::vector<double>& sorted, std::uint32_t high, std::uint32_t low);
double TrimmedDeviation(const std::vector<double>& sorted, std::uint32_t high, std::uint32_t low);
