#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

#include "Bench/Board/BoardState.h"
#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

class ProcessesTest : public BoardTest {
protected:
    // What a shell on the board prints, errors too; its exit status in `status`.
    std::string Shell(const std::string& command, int& status) const { return Shell(command, Folder(), status); }

    static std::string Shell(const std::string& command, const std::string& folder, int& status) {
        const std::string line = "VERNICOR_BENCH='" + folder +
                                 "' LD_PRELOAD='" BINARY_FOLDER "/Bench/libboard.so' sh -c '" + command + "' 2>&1";
        FILE* output = popen(line.c_str(), "r");
        std::string text;
        for (int next = fgetc(output); next != EOF; next = fgetc(output)) {
            text += static_cast<char>(next);
        }
        status = WEXITSTATUS(pclose(output));
        return text;
    }

    std::string Shell(const std::string& command) const {
        int status = -1;
        const std::string text = Shell(command, status);
        EXPECT_EQ(status, 0) << text;
        return text;
    }
};

TEST_F(ProcessesTest, a_preloaded_program_reads_the_board) {
    EXPECT_EQ(Shell("cat /sys/class/pwm/pwmchip0/npwm"), "4\n");
}

TEST_F(ProcessesTest, a_preloaded_program_writes_to_the_board) {
    Shell("echo 2 > /sys/class/gpio/export; echo out > /sys/class/gpio/pioA2/direction");
    EXPECT_TRUE(Board().Pin(0, 2).output);
    EXPECT_EQ(Board().Trace(),
              (std::vector<std::string>{"/sys/class/gpio/export=2", "/sys/class/gpio/pioA2/direction=out"}));
}

TEST_F(ProcessesTest, the_board_outlives_the_program) {
    Shell("echo 2 > /sys/class/gpio/export");
    int status = 0;
    Shell("echo 2 > /sys/class/gpio/export", status);
    EXPECT_NE(status, 0);
}

TEST_F(ProcessesTest, a_preloaded_program_lives_at_the_simulated_date) {
    EXPECT_EQ(Shell("date -u +%Y-%m-%d"), "2012-12-31\n");
}

TEST_F(ProcessesTest, a_preloaded_program_sleeps_simulated_time) {
    Board().SetSpeed(1000.0);
    const double before = Board().Seconds();
    Shell("sleep 60");
    EXPECT_GE(Board().Seconds() - before, 60.0);
}

TEST_F(ProcessesTest, a_program_without_its_board_says_so_and_ends) {
    int status = 0;
    EXPECT_EQ(Shell("true", "/nowhere", status),
              "board: VERNICOR_BENCH: /nowhere/board.state: No such file or directory\n");
    EXPECT_EQ(status, 127);
}

TEST_F(ProcessesTest, a_file_that_is_no_board_is_refused) {
    const std::string folder = Folder() + "/other";
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    std::ofstream(folder + "/board.state") << "no board";
    std::string error;
    EXPECT_EQ(Bench::Board::Open(folder, error), nullptr);
    EXPECT_EQ(error, folder + "/board.state: is no board of this version");
}

TEST_F(ProcessesTest, a_second_view_sees_and_changes_the_same_board) {
    std::string error;
    const std::unique_ptr<Bench::Board> console = Bench::Board::Open(Folder(), error);
    ASSERT_NE(console, nullptr) << error;
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "2"), 0);
    EXPECT_TRUE(console->Pin(0, 2).claimed);
    console->DrivePin(0, 2, true);
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/value"), "1\n");
}

TEST_F(ProcessesTest, a_process_that_dies_with_the_lock_does_not_keep_it) {
    const pid_t child = fork();
    if (child == 0) {
        auto* lock = new Bench::BoardLock(Board().State());
        _exit(lock == nullptr ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(WriteDevice("/sys/class/gpio/export", "2"), 0);
}

TEST_F(ProcessesTest, a_forked_child_is_on_the_board_too) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(WriteDevice("/sys/class/gpio/export", "2"));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(Board().Pin(0, 2).claimed);
}

TEST_F(ProcessesTest, a_new_run_forgets_all_but_the_files) {
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "2"), 0);
    std::string error;
    ASSERT_TRUE(Board().SetFault("led-dead", error));
    std::ofstream("/var/log/vorn/data/kept") << "x";
    Board().Reset({});
    EXPECT_FALSE(Board().Pin(0, 2).claimed);
    EXPECT_FALSE(std::ifstream("/sys/class/gpio/pioA2").is_open());
    EXPECT_TRUE(Board().Faults().empty());
    EXPECT_TRUE(Board().Trace().empty());
    EXPECT_EQ(access("/var/log/vorn/data/kept", F_OK), 0);
}

TEST_F(ProcessesTest, an_unattached_process_is_not_on_the_board) {
    Bench::DetachThisProcess();
    const bool there = access("/sys/class/gpio/export", F_OK) == 0 && access("/mnt/sd-card", F_OK) == 0;
    Bench::AttachThisProcess(Board());
    EXPECT_FALSE(there);
    EXPECT_EQ(access("/sys/class/gpio/export", F_OK), 0);
}

TEST_F(ProcessesTest, the_trace_forgets_its_oldest_and_keeps_its_count) {
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "2"), 0);
    for (int i = 0; i < 8192; ++i) {
        WriteRegister(0xFFFFF430, 1);
    }
    EXPECT_EQ(Board().TraceCount(), 8193U);
    ASSERT_EQ(Board().Trace().size(), 8192U);
    EXPECT_EQ(Board().Trace().front(), "mem 0xfffff430=0x00000001");
    Board().ClearTrace();
    EXPECT_TRUE(Board().Trace().empty());
}

TEST_F(ProcessesTest, a_wait_for_the_trace_ends_with_the_act) {
    std::thread program([] { WriteDevice("/sys/class/gpio/export", "2"); });
    EXPECT_TRUE(Board().WaitForTrace("/sys/class/gpio/export=2"));
    program.join();
    EXPECT_FALSE(Board().WaitForTrace("/sys/class/gpio/export=3", 0.0));
}

}  // namespace
