// Memory, descriptors, threads and zombies of a process, and whether they grow in a long run.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

struct Footprint {
    std::int64_t memory = 0;  // resident and its own, KiB
    std::int64_t descriptors = 0;
    std::int64_t threads = 0;
    std::int64_t zombies = 0;  // ended children without a wait
};

// Nothing if the process has ended.
std::optional<Footprint> ReadFootprint(pid_t process);

// One of the four figures over a run: medians and minimums of the first third after the warm-up and of the last third.
struct Growth {
    std::string name;
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int64_t minFirst = 0;
    std::int64_t minLast = 0;
    std::int64_t max = 0;      // of all
    std::int64_t allowed = 0;  // growth of median and minimum

    bool IsFlat() const { return last <= first + allowed && minLast <= minFirst + allowed; }
};

// A shorter run can't be judged: the allocator's arenas are still filling.
constexpr std::size_t ReadingsToJudge = 60;

// Readings of one run, at equal intervals. One thread.
class FootprintSeries {
public:
    void Add(const Footprint& footprint) { m_footprints.push_back(footprint); }
    std::size_t Size() const { return m_footprints.size(); }

    // In the order of the fields. The first fifth is warm-up. Memory may grow by a tenth and 2 MiB, which allocator
    // arenas need; the others by one, which may be in use during a reading.
    std::vector<Growth> Growths() const;
    bool IsFlat() const;
    // "memory 5120 to 5184 KiB (peak 9000), descriptors 30 to 30 (peak 33), ..."
    std::string Describe() const;

private:
    Growth GrowthOf(const char* name, std::int64_t Footprint::*field, double share, std::int64_t extra) const;

    std::vector<Footprint> m_footprints;
};

}  // namespace Bench
