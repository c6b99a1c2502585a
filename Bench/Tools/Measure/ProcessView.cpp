#include "Bench/Tools/Measure/ProcessView.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace Bench {

namespace {

std::string FolderOf(pid_t process) { return "/proc/" + std::to_string(process); }

// The number after "NAME:" in a line of /proc; returns false for another line.
bool ReadNumber(const std::string& line, const char* name, std::int64_t& number) {
    const std::string start = std::string(name) + ":";
    if (line.rfind(start, 0) != 0) {
        return false;
    }
    number = std::stoll(line.substr(start.size()));
    return true;
}

// "7f1c8a000000-7f1c8a021000 rw-p 00000000 00:00 0    /some/file"
bool IsMapping(const std::string& line) {
    const std::size_t dash = line.find('-');
    return dash != std::string::npos && dash < line.find(' ') && line.find(':') > dash;
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void ForEachThread(pid_t process, const std::function<void(const std::filesystem::path&)>& look) {
    std::error_code gone;
    std::filesystem::directory_iterator threads(FolderOf(process) + "/task", gone);
    while (!gone && threads != std::filesystem::directory_iterator()) {
        look(threads->path());
        threads.increment(gone);
    }
}

}  // namespace

ResidentMemory ResidentMemoryOf(pid_t process) {
    ResidentMemory memory;
    std::ifstream mappings(FolderOf(process) + "/smaps");
    bool counted = true;
    for (std::string line; std::getline(mappings, line);) {
        std::int64_t kilobytes = 0;
        if (IsMapping(line)) {
            counted = !EndsWith(line, "/board.state");
        } else if (!counted) {
            continue;
        } else if (ReadNumber(line, "Private_Clean", kilobytes) || ReadNumber(line, "Private_Dirty", kilobytes)) {
            memory.privatePages += kilobytes;
        } else if (ReadNumber(line, "Shared_Clean", kilobytes) || ReadNumber(line, "Shared_Dirty", kilobytes)) {
            memory.sharedPages += kilobytes;
        }
    }
    return memory;
}

Activity ActivityOf(pid_t process) {
    Activity activity;
    ForEachThread(process, [&activity](const std::filesystem::path& thread) {
        std::ifstream status(thread / "status");
        ++activity.threads;
        for (std::string line; std::getline(status, line);) {
            std::int64_t switches = 0;
            if (ReadNumber(line, "voluntary_ctxt_switches", switches) ||
                ReadNumber(line, "nonvoluntary_ctxt_switches", switches)) {
                activity.switches += static_cast<std::uint64_t>(switches);
            }
        }
    });
    clockid_t clock{};
    timespec used{};
    if (clock_getcpuclockid(process, &clock) == 0 && clock_gettime(clock, &used) == 0) {
        activity.processorTime = static_cast<std::int64_t>(used.tv_sec) * 1000000000 + used.tv_nsec;
    }
    return activity;
}

bool IsAsleep(pid_t process) {
    bool asleep = true;
    ForEachThread(process, [&asleep](const std::filesystem::path& thread) {
        std::string line;
        std::ifstream status(thread / "status");
        while (std::getline(status, line) && line.rfind("State:", 0) != 0) {
        }
        asleep = asleep && line.find("\tS") != std::string::npos;
    });
    return asleep;
}

}  // namespace Bench
