#include "Bench/Tools/Endurance/SystemUnderTest.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "Bench/Common/Program.h"

namespace Bench {

// On the instrument's 32 bits a block of 512 KiB or more always comes from the kernel and goes back to it. On 64 bits
// the limit would rise to 32 MiB with the first such block, and each arena would keep as much.
SystemUnderTest::SystemUnderTest() { setenv("GLIBC_TUNABLES", "glibc.malloc.mmap_threshold=524288", 1); }

bool SystemUnderTest::Prepare(const Places& places, const BoardSetup& setup, const SettingList& settings,
                              std::string& error) {
    return ReadSettings(places, error) && Apply(settings, error) && MakeBoard(setup, error) && MakePeers(error);
}

bool SystemUnderTest::Apply(const SettingList& settings, std::string& error) {
    for (const auto& [name, value] : settings) {
        if (!Settings().file.Set(name, value)) {
            error = "the configuration gives no " + name;
            return false;
        }
    }
    return true;
}

bool SystemUnderTest::StaysUp(std::string& reason) {
    if (!HasEnded(reason)) {
        return true;
    }
    if (EndCode() != ExitSignalBase + SIGPIPE) {
        return false;
    }
    ++m_brokenPipes;
    return Restart(reason);
}

void SystemUnderTest::LimitOutput(std::uintmax_t max) const {
    for (const std::string& file : {Output(), Log()}) {
        std::error_code problem;
        if (std::filesystem::file_size(file, problem) > max && !problem) {
            std::filesystem::resize_file(file, 0, problem);
        }
    }
}

}  // namespace Bench
