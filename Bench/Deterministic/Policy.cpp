#include "Bench/Deterministic/Policy.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Bench {

namespace {

constexpr double MaxStall = 1e8;  // nanoseconds

}  // namespace

// Constants of SplitMix64 (Steele, Lea, Flood: Fast Splittable Pseudorandom Number Generators, 2014).
std::uint64_t SeededRandom::Next() {
    m_state += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = m_state;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
}

std::uint64_t SeededRandom::Below(std::uint64_t bound) { return Next() % bound; }

double SeededRandom::Fraction() { return static_cast<double>(Next() >> 11U) / 9007199254740992.0; }

std::optional<Policy> Policy::Read(std::string_view text, std::uint64_t seed, std::string& error) {
    static constexpr struct {
        std::string_view name;
        Kind kind;
        double probability;  // if none is given; 0: it takes none
    } Rows[] = {{"random", Kind::Random, 0.0},
                {"sticky", Kind::Sticky, 0.05},
                {"priority", Kind::Priority, 0.01},
                {"until-blocked", Kind::UntilBlocked, 0.0},
                {"stalls", Kind::Stalls, 0.001}};
    const std::string_view name = text.substr(0, text.find(':'));
    const auto* row =
        std::find_if(std::begin(Rows), std::end(Rows), [name](const auto& each) { return each.name == name; });
    if (row == std::end(Rows)) {
        error = "unknown policy \"" + std::string(text) + "\" (random, sticky, priority, until-blocked or stalls)";
        return std::nullopt;
    }
    double probability = row->probability;
    if (name.size() < text.size()) {
        const std::string_view number = text.substr(name.size() + 1);
        const auto [end, failure] = std::from_chars(number.data(), number.data() + number.size(), probability);
        const bool whole = failure == std::errc() && end == number.data() + number.size();
        if (row->probability == 0.0 || !whole || !(probability > 0.0 && probability <= 1.0)) {
            error = "policy \"" + std::string(text) +
                    (row->probability == 0.0 ? "\": it takes no probability"
                                             : "\": expected a probability above 0, at most 1");
            return std::nullopt;
        }
    }
    return Policy(row->kind, probability, seed);
}

std::int64_t Policy::PriorityOfNewThread() { return static_cast<std::int64_t>(m_random.Next() >> 8U); }

std::size_t Policy::Choose(std::span<const Candidate> ready, std::optional<std::size_t> running) {
    const bool goesOn =
        running && ((m_kind == Kind::UntilBlocked) || (m_kind == Kind::Sticky && m_random.Fraction() >= m_probability));
    if (goesOn) {
        return *running;
    }
    if (m_kind != Kind::Priority) {
        return static_cast<std::size_t>(m_random.Below(ready.size()));
    }
    if (running && m_random.Fraction() < m_probability) {
        *ready[*running].priority = --m_lowest;
    }
    const auto highest = std::max_element(ready.begin(), ready.end(), [](const auto& left, const auto& right) {
        return *left.priority < *right.priority;
    });
    return static_cast<std::size_t>(highest - ready.begin());
}

std::int64_t Policy::Stall() {
    if (m_kind != Kind::Stalls || m_random.Fraction() >= m_probability) {
        return 0;
    }
    return static_cast<std::int64_t>(std::exp2(m_random.Fraction() * std::log2(MaxStall)));
}

}  // namespace Bench
