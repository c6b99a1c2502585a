#include "Bench/Tools/Endurance/Course.h"

#include <sstream>

#include "Bench/Board/Board.h"
#include "Bench/Common/CommandLine.h"
#include "Bench/Common/Text.h"
#include "Bench/Deterministic/Policy.h"

namespace Bench {

namespace {

constexpr const char* Policies[] = {"random",         "sticky:0.2",    "sticky:0.02",  "priority:0.02",
                                    "priority:0.002", "until-blocked", "stalls:0.001", "stalls:0.0001"};

// Settings that change what runs beside what.
constexpr struct {
    const char* name;
    const char* values[3];
} Variants[] = {
    {"StartInTestMode", {"true", "false", "false"}},
    {"PrimeCycleCount", {"1", "2", "3"}},
    {"SampleSwitchDelay", {"0", "100", "500"}},
    {"AlertLevel", {"0.40", "0.70", "0.90"}},
};

bool ReadRequest(std::istringstream& line, TestRequest& request) {
    std::string count;
    std::string value;
    std::string data;
    if (!(line >> request.command >> count >> request.count >> value >> request.value) || count != "count" ||
        value != "value") {
        return false;
    }
    if (line >> data) {
        std::string bytes;
        if (data != "data" || !(line >> data) || data.size() % 2 != 0 ||
            data.find_first_not_of("0123456789abcdef") != std::string::npos) {
            return false;
        }
        for (std::size_t i = 0; i < data.size(); i += 2) {
            bytes += static_cast<char>(std::stoi(data.substr(i, 2), nullptr, 16));
        }
        request.data = bytes;
    }
    return request.count <= MaxTestCount && request.value >= 0.0 && request.value <= MaxTestValue;
}

// "12.500 button 2" without its second.
bool ReadAction(std::istringstream& line, SoakEvent& event, std::string& error) {
    std::string action;
    std::string word;
    line >> action >> std::ws;
    if (action == "button") {
        event.action = SoakAction::Button;
        return static_cast<bool>(line >> event.code);
    }
    if (action == "station") {
        event.action = SoakAction::Station;
        return ReadRequest(line, event.request);
    }
    if (action == "fault") {
        event.action = SoakAction::FaultOn;
        return line >> event.fault && Board::CheckFault(event.fault, error);
    }
    if (action == "end") {
        event.action = SoakAction::FaultOff;
        return line >> word >> event.fault && word == "of";
    }
    if (action == "reset") {
        event.action = SoakAction::Reset;
        std::getline(line, word);
        event.byStation = word == "by the station";
        return event.byStation || word == "by the front end";
    }
    error = "unknown event \"" + action + "\"";
    return false;
}

bool ReadCourseLine(const std::string& text, Course& course, std::string& error) {
    std::istringstream line(text);
    std::string word;
    line >> word >> std::ws;
    if (word == "seed") {
        return static_cast<bool>(line >> course.seed);
    }
    if (word == "minutes") {
        return line >> course.minutes && course.minutes > 0.0;
    }
    if (word == "policy") {
        return line >> course.policy && Policy::Read(course.policy, 0, error);
    }
    if (word == "set") {
        auto& [name, value] = course.settings.emplace_back();
        return static_cast<bool>(line >> name >> value);
    }
    SoakEvent event;
    if (!ReadNumber(word, 0.0, 1e9, event.second)) {
        error = "unknown event \"" + word + "\"";
        return false;
    }
    if (!course.events.empty() && event.second < course.events.back().second) {
        error = "the second is before that of the event above";
        return false;
    }
    course.events.push_back(event);
    return ReadAction(line, course.events.back(), error);
}

}  // namespace

Course DrawCourse(std::uint32_t seed, const std::string& policy, double minutes) {
    Random random(seed);
    Course course;
    course.seed = seed;
    course.minutes = minutes;
    const std::string drawn = Policies[random.Below(std::size(Policies))];
    course.policy = policy.empty() ? drawn : policy;
    for (const auto& variant : Variants) {
        course.settings.emplace_back(variant.name, variant.values[random.Below(3)]);
    }
    SoakPlan plan(seed, {static_cast<double>(random.Between(2, 40)), static_cast<double>(random.Between(60, 2000)),
                         static_cast<double>(random.Between(10, 300))});
    for (SoakEvent event = plan.Next(); event.second < minutes * 60.0; event = plan.Next()) {
        course.events.push_back(event);
    }
    return course;
}

std::string WriteCourse(const Course& course) {
    std::string text = Format("seed %u\npolicy %s\nminutes %g\n", course.seed, course.policy.c_str(), course.minutes);
    for (const auto& [name, value] : course.settings) {
        text += Format("set %s %s\n", name.c_str(), value.c_str());
    }
    for (const SoakEvent& event : course.events) {
        text += event.Describe();
        text += '\n';
    }
    return text;
}

std::optional<Course> ReadCourse(const std::string& text, std::string& error) {
    Course course;
    course.policy = "random";
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        std::string reason;
        if (!line.empty() && line.front() != '#' && !ReadCourseLine(line, course, reason)) {
            error = Format("line %d: %s", number,
                           reason.empty() ? ("can't read \"" + line + "\"").c_str() : reason.c_str());
            return std::nullopt;
        }
    }
    return course;
}

}  // namespace Bench
