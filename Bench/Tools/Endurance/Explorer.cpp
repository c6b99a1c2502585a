#include "Bench/Tools/Endurance/Explorer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "Bench/Tools/Endurance/Soak.h"

namespace Bench {

namespace {

// Two findings are of one kind if they differ in numbers alone.
std::string KindOf(const Finding& finding) {
    std::string kind = finding.trouble;
    std::erase_if(kind, [](unsigned char character) { return std::isdigit(character) != 0; });
    return kind;
}

std::string InOneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ';');
    return text.empty() ? "" : text.substr(0, text.size() - 1);
}

Course Without(const Course& course, std::size_t from, std::size_t count) {
    Course shorter = course;
    const auto begin = shorter.events.begin() + static_cast<std::ptrdiff_t>(from);
    shorter.events.erase(begin, begin + static_cast<std::ptrdiff_t>(std::min(count, shorter.events.size() - from)));
    return shorter;
}

}  // namespace

std::optional<Finding> Explorer::Run(const Course& course, const std::string& traceFile) {
    static const int stop = 0;
    setenv("TSAN_OPTIONS", "halt_on_error=1", 0);  // a race that a sanitizer reports is then an end of the program
    BoardSetup setup;
    setup.startSeconds = LongRunStart;
    setup.noise = false;
    setup.exact = ExactSetup{course.seed, course.policy, traceFile, 1, UINT64_MAX};
    SystemUnderTest system;
    std::string trouble;
    if (!system.Prepare(m_places, setup, course.settings, trouble) || !system.Start(trouble)) {
        return Finding{trouble, ""};
    }
    std::size_t next = 0;
    const auto draw = [&]() -> std::optional<SoakEvent> {
        return next < course.events.size() ? std::optional(course.events[next++]) : std::nullopt;
    };
    Soak soak(system, draw, {0, 0, course.minutes / (24.0 * 60.0)});
    const bool isWell = soak.Run(stop, trouble) && soak.EndsWell(trouble);
    m_seconds += system.OnBoard().Seconds();
    const ExactView view = system.OnBoard().Exact();
    m_hash = view.hash;
    if (!view.failure.empty()) {
        trouble = view.failure;
    }
    return isWell && view.failure.empty() ? std::nullopt : std::optional(Finding{trouble, InOneLine(view.waits)});
}

Course Explorer::Shorten(Course course, const Finding& finding, int runs) {
    for (std::size_t count = (course.events.size() + 1) / 2; count > 0 && runs > 0;
         count = count == 1 ? 0 : (count + 1) / 2) {
        for (std::size_t from = 0; from < course.events.size() && runs > 0; --runs) {
            const Course shorter = Without(course, from, count);
            const std::optional<Finding> found = Run(shorter);
            if (found && KindOf(*found) == KindOf(finding)) {
                course = shorter;
            } else {
                from += count;
            }
        }
    }
    return course;
}

}  // namespace Bench
