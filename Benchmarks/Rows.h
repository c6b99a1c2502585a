// The table of everything that is compared.
#pragma once

#include <span>

#include "Benchmarks/Row.h"

std::span<const Row> AllRows();
