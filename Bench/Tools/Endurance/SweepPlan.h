// Which calls a sweep lets fail, and in which order: that however early it is stopped, what has been tried lies evenly
// spread over the whole course. Plain arithmetic.
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
    std::vector<std::string> kinds;  // empty: all that there are
    std::uint64_t most = 0;          // of each kind, evenly spread; 0: each
    std::uint64_t number = 0;        // this one alone of each kind that has as many; 0: each
    std::uint64_t seed = 1;          // where the order begins
};

// Each of 1 to `count` once: any beginning of the list is spread over all of them.
std::vector<int> SpreadOrder(std::uint32_t count, std::uint64_t seed);

// The kinds take turns, so that those of few calls are done first. `calls`: how many each kind has.
std::vector<SweepTrial> PlanSweep(const std::map<std::string, std::uint64_t>& calls, const SweepChoice& choice);

}  // namespace Bench
