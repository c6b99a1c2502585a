// What a process takes of the machine, and whether that stays the same over a long run.
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
    std::int64_t zombies = 0;  // children that have ended and that nobody has waited for
};

// Nothing where the process has gone meanwhile.
std::optional<Footprint> ReadFootprint(pid_t process);

// How one of the four went: the median of the first third behind the warm-up and that of the last.
struct Course {
    std::string name;
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::int64_t lowestFirst = 0;
    std::int64_t lowestLast = 0;
    std::int64_t highest = 0;  // ever
    std::int64_t allowed = 0;  // growth of median and lowest

    bool IsFlat() const { return last <= first + allowed && lowestLast <= lowestFirst + allowed; }
};

// Of a shorter run nothing can be said: the allocator's arenas are still filling.
constexpr std::size_t ReadingsToJudge = 60;

// Readings of one run, at even distances. One thread.
class FootprintSeries {
public:
    void Add(const Footprint& footprint) { m_footprints.push_back(footprint); }
    std::size_t Size() const { return m_footprints.size(); }

    // In the order of the fields. The first fifth is warm-up. Memory may grow by a tenth and 2 MiB, which is what an
    // allocator's arenas move by; descriptors, threads and zombies by one, which is in use at the moment of a reading.
    std::vector<Course> Courses() const;
    bool IsFlat() const;
    // "memory 5120 to 5184 KiB (peak 9000), descriptors 30 to 30 (peak 33), ..."
    std::string Describe() const;

private:
    Course CourseOf(const char* name, std::int64_t Footprint::*field, double share, std::int64_t extra) const;

    std::vector<Footprint> m_footprints;
};

}  // namespace Bench
