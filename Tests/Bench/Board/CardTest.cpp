#include <mntent.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statfs.h>

#include <fstream>
#include <sstream>

#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

constexpr const char* MountPoint = "/mnt/sd-card";

std::string WholeFile(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

class CardTest : public BoardTest {
protected:
    static int Mount() { return mount("/dev/mmcblk0p1", MountPoint, "vfat", MS_SYNCHRONOUS, "") == 0 ? 0 : errno; }
    static int Unmount() { return umount(MountPoint) == 0 ? 0 : errno; }
    std::string OnCard(const std::string& name) const { return Folder() + "/card/" + name; }
};

// A line through a C stream; 0 or the error number at the flush.
int Append(FILE* file, const char* text) {
    errno = 0;
    const bool written = fputs(text, file) >= 0 && fflush(file) == 0;
    return written ? 0 : errno;
}

TEST_F(CardTest, the_card_is_a_block_device_while_it_is_in) {
    struct stat64 status {};
    ASSERT_EQ(stat64("/dev/mmcblk0", &status), 0);
    EXPECT_TRUE(S_ISBLK(status.st_mode));
    ASSERT_EQ(stat64("/dev/mmcblk0p1", &status), 0);
    EXPECT_TRUE(S_ISBLK(status.st_mode));
    Board().PullCard();
    EXPECT_EQ(stat64("/dev/mmcblk0", &status), -1);
    EXPECT_EQ(errno, ENOENT);
    Board().InsertCard();
    EXPECT_EQ(stat64("/dev/mmcblk0", &status), 0);
}

TEST_F(CardTest, the_switch_shows_whether_it_is_in) {
    EXPECT_TRUE(Board().Pin(3, 9).level);
    Board().PullCard();
    EXPECT_FALSE(Board().Pin(3, 9).level);
}

TEST_F(CardTest, mount_and_umount_show_in_the_mount_table_and_the_trace) {
    EXPECT_EQ(WholeFile("/etc/mtab").find(MountPoint), std::string::npos);
    ASSERT_EQ(Mount(), 0);
    EXPECT_NE(WholeFile("/etc/mtab").find("/dev/mmcblk0p1 /mnt/sd-card vfat "), std::string::npos);
    EXPECT_TRUE(Board().Card().mounted);
    ASSERT_EQ(Unmount(), 0);
    EXPECT_EQ(WholeFile("/etc/mtab").find(MountPoint), std::string::npos);
    EXPECT_EQ(Board().Trace(),
              (std::vector<std::string>{"mount /dev/mmcblk0p1 /mnt/sd-card vfat 16", "umount /mnt/sd-card"}));
}

TEST_F(CardTest, each_write_shows_in_the_trace_once_it_is_done) {
    ASSERT_EQ(Mount(), 0);
    FILE* file = fopen("/mnt/sd-card/data.csv", "a");
    ASSERT_NE(file, nullptr);
    Board().ClearTrace();
    EXPECT_EQ(Append(file, "one\n"), 0);
    Board().SetCardFull(true);
    EXPECT_EQ(Append(file, "two\n"), ENOSPC);
    EXPECT_EQ(Board().Trace(), (std::vector<std::string>{"card data.csv 4"}));
    fclose(file);
}

TEST_F(CardTest, the_mount_table_is_walked_entry_by_entry) {
    ASSERT_EQ(Mount(), 0);
    FILE* table = setmntent("/etc/mtab", "r");
    ASSERT_NE(table, nullptr);
    mntent entry{};
    char text[1024];
    std::string last;
    while (getmntent_r(table, &entry, text, sizeof(text)) != nullptr) {
        last = entry.mnt_dir;
    }
    endmntent(table);
    EXPECT_EQ(last, MountPoint);
}

TEST_F(CardTest, what_mount_refuses) {
    EXPECT_EQ(mount("/dev/mmcblk0p1", "/mnt/nowhere", "vfat", 16, ""), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(mount("/dev/sda1", MountPoint, "vfat", 16, ""), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(mount("/dev/mmcblk0p1", MountPoint, "ext4", 16, ""), -1);
    EXPECT_EQ(errno, ENODEV);
    ASSERT_EQ(Mount(), 0);
    EXPECT_EQ(Mount(), EBUSY);
}

TEST_F(CardTest, an_umount_of_what_is_not_mounted_is_invalid) { EXPECT_EQ(Unmount(), EINVAL); }

TEST_F(CardTest, a_pulled_card_can_not_be_mounted) {
    Board().PullCard();
    EXPECT_EQ(Mount(), ENOENT);
}

TEST_F(CardTest, a_write_protected_card_is_a_read_only_file_system) {
    Board().SetCardWriteProtected(true);
    EXPECT_EQ(Mount(), EROFS);
    EXPECT_EQ(mount("/dev/mmcblk0p1", MountPoint, "vfat", MS_RDONLY, ""), 0);
    EXPECT_EQ(fopen64("/mnt/sd-card/a", "a"), nullptr);
    EXPECT_EQ(errno, EROFS);
}

TEST_F(CardTest, a_file_written_while_mounted_is_on_the_card) {
    ASSERT_EQ(Mount(), 0);
    std::ofstream("/mnt/sd-card/a.csv") << "line\n";
    EXPECT_EQ(WholeFile(OnCard("a.csv")), "line\n");
    EXPECT_EQ(WholeFile("/mnt/sd-card/a.csv"), "line\n");
    struct stat64 status {};
    ASSERT_EQ(stat64("/mnt/sd-card/a.csv", &status), 0);
    EXPECT_EQ(status.st_size, 5);
}

TEST_F(CardTest, a_file_written_while_not_mounted_is_not_on_the_card) {
    std::ofstream("/mnt/sd-card/a.csv") << "line\n";
    EXPECT_EQ(access(OnCard("a.csv").c_str(), F_OK), -1);
    ASSERT_EQ(Mount(), 0);
    EXPECT_EQ(access("/mnt/sd-card/a.csv", F_OK), -1);
}

TEST_F(CardTest, files_stay_on_the_card_after_unmounting_and_a_new_run) {
    ASSERT_EQ(Mount(), 0);
    std::ofstream("/mnt/sd-card/a.csv") << "line\n";
    ASSERT_EQ(Unmount(), 0);
    Board().Reset({});
    EXPECT_FALSE(Board().Card().mounted);
    ASSERT_EQ(Mount(), 0);
    EXPECT_EQ(WholeFile("/mnt/sd-card/a.csv"), "line\n");
}

TEST_F(CardTest, an_open_file_keeps_the_card_busy) {
    ASSERT_EQ(Mount(), 0);
    FILE* file = fopen64("/mnt/sd-card/a.csv", "a");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(Unmount(), EBUSY);
    fclose(file);
    EXPECT_EQ(Unmount(), 0);
}

TEST_F(CardTest, an_append_stream_appends_and_knows_its_descriptor) {
    ASSERT_EQ(Mount(), 0);
    std::ofstream("/mnt/sd-card/a.csv") << "one\n";
    FILE* file = fopen64("/mnt/sd-card/a.csv", "a");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(Append(file, "two\n"), 0);
    struct stat status {};
    EXPECT_EQ(fstat(fileno(file), &status), 0);
    EXPECT_EQ(status.st_size, 8);
    fclose(file);
    EXPECT_EQ(WholeFile(OnCard("a.csv")), "one\ntwo\n");
}

TEST_F(CardTest, writes_to_an_open_file_fail_while_the_card_is_out) {
    ASSERT_EQ(Mount(), 0);
    FILE* file = fopen64("/mnt/sd-card/a.csv", "a");
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(Append(file, "one\n"), 0);
    Board().PullCard();
    EXPECT_EQ(Append(file, "two\n"), EIO);
    EXPECT_EQ(fsync(fileno(file)), -1);
    EXPECT_EQ(errno, EIO);
    fclose(file);
    Board().InsertCard();
    EXPECT_EQ(WholeFile(OnCard("a.csv")).substr(0, 4), "one\n");
    file = fopen64("/mnt/sd-card/a.csv", "a");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(Append(file, "three\n"), 0);
    fclose(file);
}

TEST_F(CardTest, nothing_opens_on_a_pulled_card_that_is_still_mounted) {
    ASSERT_EQ(Mount(), 0);
    Board().PullCard();
    EXPECT_EQ(fopen64("/mnt/sd-card/a.csv", "a"), nullptr);
    EXPECT_EQ(errno, EIO);
    EXPECT_NE(WholeFile("/etc/mtab").find(MountPoint), std::string::npos);
    EXPECT_EQ(Unmount(), 0);
}

TEST_F(CardTest, a_full_card_has_no_space_for_a_write) {
    ASSERT_EQ(Mount(), 0);
    FILE* file = fopen64("/mnt/sd-card/a.csv", "a");
    ASSERT_NE(file, nullptr);
    Board().SetCardFull(true);
    EXPECT_EQ(Append(file, "one\n"), ENOSPC);
    fclose(file);
    EXPECT_EQ(fopen64("/mnt/sd-card/b.csv", "a"), nullptr);
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(CardTest, its_space_is_that_of_the_card) {
    Board().SetCardSpace(1000, 250, 512);
    ASSERT_EQ(Mount(), 0);
    struct statfs64 space {};
    ASSERT_EQ(statfs64(MountPoint, &space), 0);
    EXPECT_EQ(space.f_blocks, 1000U);
    EXPECT_EQ(space.f_bfree, 250U);
    EXPECT_EQ(space.f_bsize, 512);
    Board().SetCardFull(true);
    ASSERT_EQ(statfs64("/mnt/sd-card/", &space), 0);
    EXPECT_EQ(space.f_bfree, 0U);
}

TEST_F(CardTest, a_slow_card_takes_simulated_time_for_a_write) {
    ASSERT_EQ(Mount(), 0);
    Board().SetSpeed(1000.0);
    Board().SetCardSlow(30000);
    FILE* file = fopen64("/mnt/sd-card/a.csv", "a");
    ASSERT_NE(file, nullptr);
    const double before = Board().Seconds();
    ASSERT_EQ(Append(file, "one\n"), 0);
    EXPECT_GE(Board().Seconds() - before, 30.0);
    Board().SetCardSlow(0);
    fclose(file);
}

TEST_F(CardTest, another_mount_point_leads_to_the_card_too) {
    ASSERT_EQ(mkdir("/mnt/other", 0700), 0);
    ASSERT_EQ(mount("/dev/mmcblk0p1", "/mnt/other/", "vfat", 16, ""), 0);
    std::ofstream("/mnt/other/a.csv") << "line\n";
    EXPECT_EQ(WholeFile(OnCard("a.csv")), "line\n");
    EXPECT_EQ(umount("/mnt/other"), 0);
}

TEST_F(CardTest, folders_of_the_instrument_are_in_the_bench_folder) {
    std::ofstream("/var/log/vorn/data/analyzer.op.xml") << "x";
    EXPECT_EQ(WholeFile(Folder() + "/var/log/vorn/data/analyzer.op.xml"), "x");
    ASSERT_EQ(rename("/var/log/vorn/data/analyzer.op.xml", "/var/log/vorn/data/b"), 0);
    EXPECT_EQ(remove("/var/log/vorn/data/b"), 0);
    EXPECT_EQ(mkdir("/usr/share/vorn/bin/configuration", 0700), 0);
    EXPECT_EQ(access((Folder() + "/usr/share/vorn/bin/configuration").c_str(), F_OK), 0);
}

}  // namespace
