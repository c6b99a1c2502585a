// The table of all comparisons.
#pragma once

#include <span>

#include "Benchmarks/Row.h"

std::span<const Row> AllRows();
