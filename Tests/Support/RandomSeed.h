// The seed of a random test: --gtest_random_seed=N repeats the run that printed N, 1 to 99999.
#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <random>

inline unsigned RandomSeed() {
    const int wanted = GTEST_FLAG_GET(random_seed);
    const unsigned seed = wanted != 0 ? static_cast<unsigned>(wanted) : 1 + std::random_device()() % 99'999;
    std::cout << "seed " << seed << '\n';
    return seed;
}
