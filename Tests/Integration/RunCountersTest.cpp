// The run counters of the whole system, in their files.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>

#include "Tests/Support/ProductProcess.h"
#include "Tests/Support/RandomSeed.h"
#include "Tests/Support/SystemFixture.h"

namespace {

constexpr double TwoHours = 7200.0;

std::string ValueOf(const std::string& text, const std::string& name) {
    const std::size_t item = text.find("name=\"" + name + "\"");
    const std::size_t start = text.find("value=\"", item) + 7;
    return item == std::string::npos ? "" : text.substr(start, text.find('"', start) - start);
}

// Of both counters; empty if the file is not complete.
std::string HoursIn(const std::string& path) {
    const std::string text = ReadFile(path);
    const std::string hours = ValueOf(text, "ElectronicsRunHours");
    const bool isWhole = text.ends_with("</ROOT_ANALYZER>\n") && ValueOf(text, "RemoteIndicatorRunHours") == hours;
    return isWhole ? hours : "";
}

std::string MainIn(const std::string& folder) { return folder + "/var/log/vorn/data/analyzer.op.xml"; }
std::string BackupIn(const std::string& folder) { return folder + "/var/log/vorn/data/analyzer.op.backup.xml"; }

class RunCounters : public SystemOnBoard {
protected:
    RunCounters() : SystemOnBoard(200.0) {}

    // The monitor has run its first check, and logs each before it begins; it counts in idle, too.
    void StartAndCheck() {
        Start();
        WaitForIdle();
        Send(MOVE_TO_RUNNING);
        WaitFor("Processing TimeOut for - DeviceMonitor", 2);
        Send(MOVE_TO_IDLE);
    }

    bool BothFilesSay(const std::string& hours) const {
        return HoursIn(MainIn(Folder())) == hours && HoursIn(BackupIn(Folder())) == hours;
    }

    double Hours(std::int64_t since) const { return static_cast<double>(Board().WallNanoSeconds() - since) / 3600.0e9; }
};

class RunCountersOfProduct : public BoardTest {
protected:
    RunCountersOfProduct() : BoardTest(AtSpeed(100.0)) {
        configuration.Set("AutoStartDelay", "1000").Set("LoggingLevel", "DEBUG_LOG_LEVEL").LayInto(Folder());
    }

    // The monitor has run its first check: it logs each before it begins.
    void WaitForCheck() const {
        EXPECT_TRUE(Board().WaitUntil([this] {
            const std::vector<Bench::LogLine> lines = Board().Log();
            return std::count_if(lines.begin(), lines.end(), [](const Bench::LogLine& line) {
                       return line.text.find("Processing TimeOut for - DeviceMonitor") != std::string::npos;
                   }) >= 2;
        }));
    }

    SampleConfiguration configuration;
};

}  // namespace

// The clock skips most of each two hours.
TEST_F(RunCounters, of_two_days_advance_by_two_hours_every_two_hours_in_both_files) {
    const std::int64_t start = Board().WallNanoSeconds();
    StartAndCheck();
    for (int hours = 2; hours <= 48; hours += 2) {
        Board().JumpClock(TwoHours - 10.0);
        const std::string text = std::to_string(hours) + ".00";
        ASSERT_TRUE(Board().WaitUntil([&] { return BothFilesSay(text); })) << text;
        EXPECT_GT(Hours(start), hours);
        EXPECT_LT(Hours(start), hours + 2);
    }
    EXPECT_EQ(ValueOf(ReadFile(MainIn(Folder())), "SerialNumber"), "123456789");
}

TEST_F(RunCounters, a_requested_cycle_is_counted_and_saved_with_the_hours) {
    Start();
    WaitForIdle();
    Send(COLLECT_MEASUREMENT);
    Send(COLLECT_MEASUREMENT);
    Send(MOVE_TO_RUNNING);  // asks for one more
    WaitFor("Processing TimeOut for - DeviceMonitor", 2);
    Board().JumpClock(TwoHours);
    EXPECT_TRUE(Board().WaitUntil([this] { return BothFilesSay("2.00"); }));
    for (const char* name :
         {"TubingRunCycles", "ColorimeterRunCycles", "SampleConditioningRunCycles", "ReagentDeliveryRunCycles"}) {
        EXPECT_EQ(ValueOf(ReadFile(MainIn(Folder())), name), "3") << name;
    }
}

TEST_F(RunCounters, continue_over_a_reset) {
    for (const char* hours : {"2.00", "4.00", "6.00"}) {
        Board().ClearLog();
        StartAndCheck();
        Board().JumpClock(TwoHours);
        EXPECT_TRUE(Board().WaitUntil([&] { return BothFilesSay(hours); })) << hours;
        Reset();
    }
    StartAndCheck();
}

TEST_F(RunCountersOfProduct, killed_around_a_save_are_never_below_the_last_complete_one) {
    const unsigned seed = RandomSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> microseconds(0, 15000);
    double complete = 0.0;
    for (int kill = 0; kill < 40; ++kill) {
        Board().ClearLog();
        const ProductProcess product(Folder(), true);
        WaitForCheck();
        // The first save after the kill: two hours more than the last complete one, or than the one that was cut.
        Board().JumpClock(TwoHours);
        double hours = 0.0;
        ASSERT_TRUE(Board().WaitUntil([&] {
            hours = std::strtod(HoursIn(BackupIn(Folder())).c_str(), nullptr);
            return hours >= complete + 2.0 && HoursIn(BackupIn(Folder())) == HoursIn(MainIn(Folder()));
        })) << "kill "
            << kill << " hours " << hours;
        EXPECT_TRUE(hours == complete + 2.0 || hours == complete + 4.0) << hours << " after " << complete;
        complete = hours;
        Board().JumpClock(TwoHours);
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(microseconds(random));
        while (std::chrono::steady_clock::now() < end) {
        }
    }
}
