#include "Bench/Tools/Endurance/SweepPlan.h"

#include <algorithm>

namespace Bench {

namespace {

constexpr std::uint64_t SeedStep = 2654435761;  // 2^32 over the golden ratio: neighboring seeds start far apart

// The lowest `bits` bits in reverse order: counting up halves the remaining gaps again and again.
std::uint32_t Reversed(std::uint32_t number, unsigned bits) {
    std::uint32_t reversed = 0;
    for (unsigned bit = 0; bit < bits; ++bit) {
        reversed = reversed << 1U | (number >> bit & 1U);
    }
    return reversed;
}

std::vector<int> ChosenNumbers(std::uint64_t calls, const SweepChoice& choice) {
    if (choice.number > 0) {
        return choice.number <= calls ? std::vector<int>{static_cast<int>(choice.number)} : std::vector<int>{};
    }
    std::vector<int> numbers = SpreadOrder(static_cast<std::uint32_t>(calls), choice.seed);
    if (choice.max > 0 && numbers.size() > choice.max) {
        numbers.resize(static_cast<std::size_t>(choice.max));
    }
    return numbers;
}

}  // namespace

std::vector<int> SpreadOrder(std::uint32_t count, std::uint64_t seed) {
    std::vector<int> order;
    unsigned bits = 0;
    while (std::uint64_t{1} << bits < count) {
        ++bits;
    }
    for (std::uint64_t i = 0; i < std::uint64_t{1} << bits && order.size() < count; ++i) {
        const std::uint32_t at = Reversed(static_cast<std::uint32_t>(i), bits);
        if (at < count) {
            order.push_back(static_cast<int>((at + seed * SeedStep % count) % count) + 1);
        }
    }
    return order;
}

std::vector<SweepTrial> PlanSweep(const std::map<std::string, std::uint64_t>& calls, const SweepChoice& choice) {
    std::map<std::string, std::vector<int>> numbers;
    std::size_t longest = 0;
    for (const auto& [kind, count] : calls) {
        const bool isChosen = std::find(choice.kinds.begin(), choice.kinds.end(), kind) != choice.kinds.end();
        if (count > 0 && (choice.kinds.empty() || isChosen)) {
            numbers[kind] = ChosenNumbers(count, choice);
            longest = std::max(longest, numbers[kind].size());
        }
    }
    std::vector<SweepTrial> trials;
    for (std::size_t rank = 0; rank < longest; ++rank) {
        for (const auto& [kind, list] : numbers) {
            if (rank < list.size()) {
                trials.push_back({kind, list[rank]});
            }
        }
    }
    return trials;
}

}  // namespace Bench
