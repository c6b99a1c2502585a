#include <fcntl.h>
#include <sys/mount.h>
#include <syslog.h>
#include <unistd.h>

#include <chrono>
#include <thread>

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
    std::int64_t Counted() const { return Bench::DeviceTime(Board().State()); }
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

TEST_F(DeviceTimeTest, a_call_on_no_device_stops_counting) {
    Bench::DeviceCall call(Board().State());
    call.Is(false);
    const std::int64_t before = Counted();
    Pass(1000);
    EXPECT_EQ(Counted(), before);
}

TEST_F(DeviceTimeTest, a_call_on_a_device_starts_counting) {
    Bench::DeviceCall call(Board().State(), false);
    std::int64_t before = Counted();
    Pass(1000);
    EXPECT_EQ(Counted(), before);
    call.Is(true);
    before = Counted();
    Pass(1000);
    EXPECT_GE(Counted() - before, 1000);
}

TEST_F(DeviceTimeTest, a_call_under_way_counts_up_to_now) {
    const Bench::DeviceCall call(Board().State());
    const std::int64_t before = Counted();
    Pass(1000);
    EXPECT_GE(Counted() - before, 1000);
}

TEST_F(DeviceTimeTest, calls_at_the_same_time_count_once) {
    constexpr std::int64_t Length = 2000000;
    const std::int64_t before = Counted();
    const std::int64_t begin = Now();
    {
        const Bench::DeviceCall call(Board().State());
        std::thread([this] {
            const Bench::DeviceCall another(Board().State());
            Pass(Length);
        }).join();
        EXPECT_GE(Counted() - before, Length);
    }
    EXPECT_LE(Counted() - before, Now() - begin);
}

TEST_F(DeviceTimeTest, the_trace_has_the_device_time_of_each_call) {
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

TEST_F(DeviceTimeTest, a_file_on_the_disk_counts_only_while_its_path_is_resolved) {
    const std::int64_t begin = Now();
    std::int64_t before = Counted();
    const int file = open("/var/log/vorn/data/file", O_RDWR | O_CREAT, 0600);
    EXPECT_GT(Counted(), before);
    EXPECT_LT(Counted() - before, Now() - begin);
    before = Counted();
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

TEST_F(DeviceTimeTest, a_new_run_forgets_an_unfinished_call) {
    Board().State().deviceCalls.fetch_add(1);
    Board().Reset({});
    const std::int64_t before = Counted();
    Pass(1000);
    EXPECT_EQ(Counted(), before);
}

TEST_F(DeviceTimeTest, tracing_a_write_to_the_card_counts) {
    ASSERT_EQ(mount("/dev/mmcblk0p1", "/mnt/sd-card", "vfat", MS_SYNCHRONOUS, ""), 0);
    const int file = open("/mnt/sd-card/file", O_WRONLY | O_CREAT, 0600);
    ASSERT_GE(file, 0);
    const std::int64_t begin = Now();
    const std::int64_t before = Counted();
    ASSERT_EQ(write(file, "x", 1), 1);
    const std::int64_t counted = Counted() - before;
    EXPECT_GT(counted, 0);
    EXPECT_LT(counted, Now() - begin);
    close(file);
}
