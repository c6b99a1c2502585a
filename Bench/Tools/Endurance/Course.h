// One run of an exploration: the policy, the settings and the events, drawn from a seed or read from a file. One
// thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Bench/Tools/Endurance/SoakPlan.h"
#include "Bench/Tools/Endurance/SystemUnderTest.h"

namespace Bench {

struct Course {
    std::uint32_t seed = 1;
    std::string policy;
    double minutes = 10.0;  // simulated
    SettingList settings;
    std::vector<SoakEvent> events;
};

// An empty policy is drawn too.
Course DrawCourse(std::uint32_t seed, const std::string& policy, double minutes);

// A course as text, a line for each fact: "seed 7", "policy sticky:0.05", "minutes 10", "set NAME VALUE", and the
// events as SoakEvent describes them. Reading returns nothing for other lines, with "line N: ..." in `error`.
std::string WriteCourse(const Course& course);
std::optional<Course> ReadCourse(const std::string& text, std::string& error);

}  // namespace Bench
