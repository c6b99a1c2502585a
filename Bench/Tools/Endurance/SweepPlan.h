// Which calls a sweep makes fail, in an order that is spread over the whole course from the start. Plain arithmetic.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Bench {

struct SweepTrial {
    std::string kind;
    int n = 0;  // 1: the first call of that kind
};

struct SweepChoice {
    std::vector<std::string> kinds;  // empty: all
    std::uint64_t max = 0;           // calls of each kind; 0: all
    std::uint64_t number = 0;        // only this call of each kind; 0: all
    std::uint64_t seed = 1;          // of the order
};

// Each of 1 to `count` once; any first part of the list is spread over all of them.
std::vector<int> SpreadOrder(std::uint32_t count, std::uint64_t seed);

// The kinds take turns, so kinds of few calls are done first. `calls`: how many calls each kind has.
std::vector<SweepTrial> PlanSweep(const std::map<std::string, std::uint64_t>& calls, const SweepChoice& choice);

}  // namespace Bench
