// The table at the end of a run.
#pragma once

#include <vector>

#include "Benchmarks/Row.h"

double Median(std::vector<double> values);

// Prints one line a row; false if a row missed its target.
bool PrintTable(const std::vector<Outcome>& outcomes);
