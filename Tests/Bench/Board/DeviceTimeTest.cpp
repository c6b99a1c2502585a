#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <chrono>

#include "Bench/Board/BoardState.h"
#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr char Chip[] = "/sys/class/pwm/pwmchip0/export";

// The machine's time: the clock of the C++ library is the board's here, whose seconds last as long.
std::int64_t Now() { return Bench::RealNanoSeconds(); }

void Pass(std::int64_t nanoSeconds) {
    for (const std::int64_t end = Now() + nanoSeconds; Now() < end;) {
    }
}

class DeviceTimeTest : public BoardTest {
protected:
    std::int64_t Counted() const { return Board().State().deviceTime.load(); }
    double LastEntry() const { return Board().TraceWithTimes().back().deviceSeconds; }
};

}  // namespace

TEST_F(DeviceTimeTest, a_call_counts_from_its_beginning_to_its_end) {
    constexpr std::int64_t Length = 2000000;
    const std::int64_t before = Counted();
    const std::int64_t begin = Now();
    {
        const Bench::DeviceCall call(Board().State());
        Pass(Length);
    }
    const std::int64_t end = Now();
    EXPECT_GE(Counted() - before, Length);
    EXPECT_LE(Counted() - before, end - begin);
}

TEST_F(DeviceTimeTest, a_call_that_turns_out_to_be_of_no_device_does_not_count) {
    const std::int64_t before = Counted();
    {
        Bench::DeviceCall call(Board().State());
        Pass(1000);
        call.Is(false);
    }
    EXPECT_EQ(Counted(), before);
}

TEST_F(DeviceTimeTest, a_call_that_turns_out_to_be_of_a_device_counts_from_its_beginning) {
    constexpr std::int64_t Length = 2000000;
    const std::int64_t before = Counted();
    {
        Bench::DeviceCall call(Board().State(), false);
        Pass(Length);
        call.Is(true);
    }
    EXPECT_GE(Counted() - before, Length);
}

TEST_F(DeviceTimeTest, a_call_runs_up_to_its_end) {
    EXPECT_EQ(Bench::DeviceCall::Running(), 0);
    {
        const Bench::DeviceCall call(Board().State());
        Pass(1000);
        EXPECT_GE(Bench::DeviceCall::Running(), 1000);
    }
    EXPECT_EQ(Bench::DeviceCall::Running(), 0);
}

TEST_F(DeviceTimeTest, what_a_call_does_is_told_with_its_own_time_until_then) {
    const int file = open(Chip, O_WRONLY);
    const std::int64_t before = Counted();
    ASSERT_EQ(write(file, "1", 1), 1);
    const std::int64_t after = Counted();
    close(file);
    EXPECT_GT(LastEntry(), static_cast<double>(before) / 1e9);
    EXPECT_LE(LastEntry(), static_cast<double>(after) / 1e9);
}

TEST_F(DeviceTimeTest, opening_reading_and_closing_a_device_file_count) {
    std::int64_t before = Counted();
    const int file = open("/sys/bus/iio/devices/iio:device0/in_voltage_scale", O_RDONLY);
    ASSERT_GE(file, 0);
    EXPECT_GT(Counted(), before);
    before = Counted();
    char text[32];
    EXPECT_GT(read(file, text, sizeof text), 0);
    EXPECT_GT(Counted(), before);
    before = Counted();
    EXPECT_EQ(close(file), 0);
    EXPECT_GT(Counted(), before);
}

TEST_F(DeviceTimeTest, a_file_on_the_disk_does_not_count) {
    const std::int64_t before = Counted();
    const int file = open("/var/log/vorn/data/file", O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(write(file, "x", 1), 1);
    char got = 0;
    EXPECT_EQ(read(file, &got, 1), 0);
    close(file);
    EXPECT_EQ(Counted(), before);
}

TEST_F(DeviceTimeTest, a_line_of_the_log_counts) {
    const std::int64_t before = Counted();
    syslog(LOG_INFO, "%s", "a line");
    EXPECT_GT(Counted(), before);
}

TEST_F(DeviceTimeTest, what_a_call_on_a_file_of_the_disk_does_is_told_without_its_own_time) {
    const Bench::DeviceCall call(Board().State(), false);
    Pass(1000);
    EXPECT_EQ(Bench::DeviceCall::Running(), 0);
}
