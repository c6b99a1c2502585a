#include <dirent.h>
#include <poll.h>
#include <sys/stat.h>

#include <fstream>
#include <thread>

#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

using Texts = std::vector<std::string>;

constexpr const char* Export = "/sys/class/gpio/export";
constexpr const char* Unexport = "/sys/class/gpio/unexport";

class GpioTest : public BoardTest {
protected:
    // Claims bank 0 pin 2.
    static void Claim() { ASSERT_EQ(WriteDevice(Export, "2"), 0); }
};

// Waits on an open value file as a driver does: reads at 0 first. 1: an edge; 0: none in that time.
class EdgeWaiter {
public:
    explicit EdgeWaiter(const std::string& path) : m_file(open(path.c_str(), O_RDONLY)) { Read(); }
    ~EdgeWaiter() { close(m_file); }
    EdgeWaiter(const EdgeWaiter&) = delete;
    EdgeWaiter& operator=(const EdgeWaiter&) = delete;

    std::string Read() const {
        char text[2] = {};
        lseek(m_file, 0, SEEK_SET);
        return {text, static_cast<std::size_t>(std::max<ssize_t>(read(m_file, text, sizeof(text)), 0))};
    }

    int Wait(int milliseconds) {
        pollfd files{m_file, POLLPRI, 0};
        const int result = poll(&files, 1, milliseconds);
        m_events = files.revents;
        return result;
    }

    short Events() const { return m_events; }

private:
    int m_file;
    short m_events = 0;
};

TEST_F(GpioTest, a_pin_has_no_folder_before_its_export) {
    EXPECT_EQ(opendir("/sys/class/gpio/pioA2"), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(GpioTest, an_exported_pin_has_a_folder_of_three_files) {
    Claim();
    DIR* folder = opendir("/sys/class/gpio/pioA2");
    ASSERT_NE(folder, nullptr);
    closedir(folder);
    struct stat status {};
    for (const char* file : {"direction", "edge", "value"}) {
        EXPECT_EQ(stat((std::string("/sys/class/gpio/pioA2/") + file).c_str(), &status), 0) << file;
    }
}

TEST_F(GpioTest, a_pin_folder_opens_as_a_stream) {
    Claim();
    EXPECT_TRUE(std::ifstream("/sys/class/gpio/pioA2").is_open());
    EXPECT_FALSE(std::ifstream("/sys/class/gpio/pioA3").is_open());
}

TEST_F(GpioTest, the_export_number_is_bank_times_32_plus_pin) {
    ASSERT_EQ(WriteDevice(Export, "47\n"), 0);
    EXPECT_TRUE(Board().Pin(1, 15).claimed);
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioB15/direction"), "in\n");
}

TEST_F(GpioTest, a_second_export_is_busy) {
    Claim();
    EXPECT_EQ(WriteDevice(Export, "2"), EBUSY);
    EXPECT_EQ(Board().Trace(), (Texts{"/sys/class/gpio/export=2", "/sys/class/gpio/export=2 !EBUSY"}));
}

TEST_F(GpioTest, an_export_of_no_pin_is_invalid) {
    EXPECT_EQ(WriteDevice(Export, "128"), EINVAL);
    EXPECT_EQ(WriteDevice(Export, "-1"), EINVAL);
    EXPECT_EQ(WriteDevice(Export, "two"), EINVAL);
    EXPECT_EQ(WriteDevice(Export, ""), 0);  // a write of nothing never reaches the device
}

TEST_F(GpioTest, unexport_removes_the_folder) {
    Claim();
    EXPECT_EQ(WriteDevice(Unexport, "2"), 0);
    EXPECT_FALSE(std::ifstream("/sys/class/gpio/pioA2").is_open());
    EXPECT_FALSE(Board().Pin(0, 2).claimed);
}

TEST_F(GpioTest, an_unexport_of_a_free_pin_is_invalid) { EXPECT_EQ(WriteDevice(Unexport, "2"), EINVAL); }

TEST_F(GpioTest, a_pin_starts_as_an_input_without_edge) {
    Claim();
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/direction"), "in\n");
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/edge"), "none\n");
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/value"), "0\n");
}

TEST_F(GpioTest, a_value_written_to_an_input_is_not_permitted) {
    Claim();
    EXPECT_EQ(WriteDevice("/sys/class/gpio/pioA2/value", "1"), EPERM);
}

TEST_F(GpioTest, an_unknown_direction_is_invalid) {
    Claim();
    EXPECT_EQ(WriteDevice("/sys/class/gpio/pioA2/direction", "sideways"), EINVAL);
}

TEST_F(GpioTest, an_output_keeps_its_level_and_goes_low_with_its_direction) {
    Claim();
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/direction", "out"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/value", "1"), 0);
    EXPECT_TRUE(Board().Pin(0, 2).level);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/direction", "out"), 0);
    EXPECT_FALSE(Board().Pin(0, 2).level);
}

TEST_F(GpioTest, an_edge_on_an_output_is_refused_but_none_is_not) {
    Claim();
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/direction", "out"), 0);
    EXPECT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "both"), EIO);
    EXPECT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "none"), 0);
}

TEST_F(GpioTest, the_four_edges_are_kept_and_others_are_invalid) {
    Claim();
    for (const char* edge : {"rising", "falling", "both", "none"}) {
        ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", edge), 0);
        EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/edge"), std::string(edge) + "\n");
    }
    EXPECT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "neither"), EINVAL);
}

TEST_F(GpioTest, an_input_reads_what_drives_it) {
    Claim();
    Board().DrivePin(0, 2, true);
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/value"), "1\n");
    Board().ReleasePin(0, 2);
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/value"), "0\n");
}

TEST_F(GpioTest, an_open_value_file_is_read_again_at_its_start) {
    Claim();
    const EdgeWaiter waiter("/sys/class/gpio/pioA2/value");
    EXPECT_EQ(waiter.Read(), "0\n");
    Board().DrivePin(0, 2, true);
    EXPECT_EQ(waiter.Read(), "1\n");
}

TEST_F(GpioTest, a_wait_without_an_edge_times_out) {
    Claim();
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "both"), 0);
    EXPECT_EQ(EdgeWaiter("/sys/class/gpio/pioA2/value").Wait(10), 0);
}

TEST_F(GpioTest, an_edge_before_the_wait_is_pending_until_a_read) {
    Claim();
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "both"), 0);
    EdgeWaiter waiter("/sys/class/gpio/pioA2/value");
    Board().DrivePin(0, 2, true);
    EXPECT_EQ(waiter.Wait(10000), 1);
    EXPECT_EQ(waiter.Events(), POLLPRI | POLLERR);
    EXPECT_EQ(waiter.Wait(10000), 1);
    EXPECT_EQ(waiter.Read(), "1\n");
    EXPECT_EQ(waiter.Wait(10), 0);
}

TEST_F(GpioTest, a_new_open_has_its_event_pending) {
    Claim();
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "both"), 0);
    const int file = open("/sys/class/gpio/pioA2/value", O_RDONLY);
    pollfd files{file, POLLPRI, 0};
    EXPECT_EQ(poll(&files, 1, 10000), 1);
    close(file);
}

TEST_F(GpioTest, only_the_chosen_edge_wakes_the_wait) {
    Claim();
    Board().DrivePin(0, 2, true);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "rising"), 0);
    EdgeWaiter waiter("/sys/class/gpio/pioA2/value");
    Board().DrivePin(0, 2, false);
    EXPECT_EQ(waiter.Wait(10), 0);
    Board().DrivePin(0, 2, true);
    EXPECT_EQ(waiter.Wait(10000), 1);
}

TEST_F(GpioTest, an_edge_from_another_thread_ends_the_wait) {
    Claim();
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/edge", "both"), 0);
    EdgeWaiter waiter("/sys/class/gpio/pioA2/value");
    std::thread driver([this] { Board().DrivePin(0, 2, true); });
    EXPECT_EQ(waiter.Wait(-1), 1);
    driver.join();
}

TEST_F(GpioTest, a_value_file_of_a_released_pin_is_gone) {
    Claim();
    const int file = open("/sys/class/gpio/pioA2/value", O_RDONLY);
    ASSERT_EQ(WriteDevice(Unexport, "2"), 0);
    char byte = 0;
    EXPECT_EQ(read(file, &byte, 1), -1);
    EXPECT_EQ(errno, ENODEV);
    close(file);
}

TEST_F(GpioTest, a_file_open_for_reading_takes_no_write) {
    Claim();
    const int file = open("/sys/class/gpio/pioA2/direction", O_RDONLY);
    EXPECT_EQ(write(file, "out", 3), -1);
    EXPECT_EQ(errno, EBADF);
    close(file);
}

TEST_F(GpioTest, a_c_stream_reaches_the_pin) {
    Claim();
    FILE* direction = fopen("/sys/class/gpio/pioA2/direction", "w");
    ASSERT_NE(direction, nullptr);
    fprintf(direction, "%s", "out");
    EXPECT_EQ(fclose(direction), 0);
    EXPECT_TRUE(Board().Pin(0, 2).output);
    FILE* value = fopen("/sys/class/gpio/pioA2/value", "r");
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(fgetc(value), '0');
    fclose(value);
}

TEST_F(GpioTest, a_c_stream_shows_a_refused_write_when_flushed) {
    Claim();
    FILE* value = fopen("/sys/class/gpio/pioA2/value", "w");
    ASSERT_NE(value, nullptr);
    fputs("1", value);
    EXPECT_EQ(fflush(value), EOF);
    EXPECT_EQ(errno, EPERM);
    fclose(value);
}

TEST_F(GpioTest, a_cpp_stream_shows_a_refused_write) {
    std::ofstream file(Export);
    file << 500 << std::flush;
    EXPECT_FALSE(file.good());
}

TEST_F(GpioTest, an_unknown_file_of_the_device_tree_is_missing) {
    EXPECT_EQ(ReadDevice("/sys/class/net/lo/mtu"), "!" + std::to_string(ENOENT));
    EXPECT_EQ(ReadDevice("/dev/kmsg"), "!" + std::to_string(ENOENT));
}

TEST_F(GpioTest, files_of_the_system_itself_are_reached) {
    EXPECT_EQ(WriteDevice("/dev/null", "x"), 0);
    EXPECT_EQ(access("/sys/devices/system/cpu", F_OK), 0);
    EXPECT_EQ(access("/dev/urandom", R_OK), 0);
}

TEST_F(GpioTest, a_path_with_dots_and_doubled_slashes_is_the_same_path) {
    EXPECT_EQ(WriteDevice("/sys//class/./gpio/../gpio/export", "2"), 0);
    EXPECT_TRUE(Board().Pin(0, 2).claimed);
}

TEST_F(GpioTest, the_home_flag_follows_the_pump) {
    Board().ReleasePin(1, 18);
    Bench::InstrumentState state;
    state.pumpAngle = 100.0;
    Board().SetInstrument(state);
    EXPECT_TRUE(Board().Pin(1, 18).level);
    state.pumpAngle = 340.0;
    Board().SetInstrument(state);
    EXPECT_FALSE(Board().Pin(1, 18).level);
}

}  // namespace
