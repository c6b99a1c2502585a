#include "Bench/Tools/Endurance/Footprint.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "Bench/Common/Text.h"

namespace Bench {

namespace fs = std::filesystem;

namespace {

std::int64_t EntriesOf(const std::string& folder) {
    std::error_code problem;
    const fs::directory_iterator entries(folder, problem);
    return problem ? 0 : std::distance(begin(entries), end(entries));
}

bool IsZombie(const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t name = text.rfind(") ");
    return name != std::string::npos && text.compare(name + 2, 1, "Z") == 0;
}

std::int64_t ZombiesOf(const std::string& folder) {
    std::int64_t zombies = 0;
    std::error_code problem;
    for (const fs::directory_entry& thread : fs::directory_iterator(folder + "/task", problem)) {
        std::ifstream children(thread.path() / "children");
        std::string child;
        while (children >> child) {
            zombies += IsZombie(child) ? 1 : 0;
        }
    }
    return zombies;
}

std::int64_t MedianOf(const std::vector<std::int64_t>& values) {
    return static_cast<std::int64_t>(Median({values.begin(), values.end()}));
}

}  // namespace

std::optional<Footprint> ReadFootprint(pid_t process) {
    const std::string folder = "/proc/" + std::to_string(process);
    Footprint footprint;
    std::ifstream status(folder + "/status");
    std::string word;
    bool isAlive = false;
    while (status >> word) {
        if (word == "RssAnon:") {
            isAlive = static_cast<bool>(status >> footprint.memory);
        } else if (word == "Threads:") {
            status >> footprint.threads;
        }
    }
    if (process <= 0 || !isAlive) {
        return std::nullopt;
    }
    footprint.descriptors = EntriesOf(folder + "/fd");
    footprint.zombies = ZombiesOf(folder);
    return footprint;
}

std::vector<Growth> FootprintSeries::Growths() const {
    constexpr double Tenth = 0.1;
    return {
        GrowthOf("memory", &Footprint::memory, Tenth, 2048),
        GrowthOf("descriptors", &Footprint::descriptors, 0.0, 1),
        GrowthOf("threads", &Footprint::threads, 0.0, 1),
        GrowthOf("zombies", &Footprint::zombies, 0.0, 1),
    };
}

Growth FootprintSeries::GrowthOf(const char* name, std::int64_t Footprint::*field, double share,
                                 std::int64_t extra) const {
    Growth growth;
    growth.name = name;
    std::vector<std::int64_t> values;
    for (const Footprint& footprint : m_footprints) {
        values.push_back(footprint.*field);
        growth.max = std::max(growth.max, values.back());
    }
    const auto warm = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 5);
    const std::ptrdiff_t third = (values.end() - warm) / 3;
    if (third == 0) {
        return growth;
    }
    const std::vector<std::int64_t> first(warm, warm + third);
    const std::vector<std::int64_t> last(values.end() - third, values.end());
    growth.first = MedianOf(first);
    growth.last = MedianOf(last);
    growth.minFirst = *std::min_element(first.begin(), first.end());
    growth.minLast = *std::min_element(last.begin(), last.end());
    growth.allowed = static_cast<std::int64_t>(static_cast<double>(growth.first) * share) + extra;
    return growth;
}

bool FootprintSeries::IsFlat() const {
    const std::vector<Growth> growths = Growths();
    return std::all_of(growths.begin(), growths.end(), [](const Growth& growth) { return growth.IsFlat(); });
}

std::string FootprintSeries::Describe() const {
    std::string text;
    for (const Growth& growth : Growths()) {
        text += (text.empty() ? "" : ", ") + growth.name + " " + std::to_string(growth.first) + " to " +
                std::to_string(growth.last) + (growth.name == "memory" ? " KiB" : "") + " (peak " +
                std::to_string(growth.max) + ")" + (growth.IsFlat() ? "" : " GREW");
    }
    return text;
}

}  // namespace Bench
