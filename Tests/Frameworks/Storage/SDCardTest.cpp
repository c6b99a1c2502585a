#include "Frameworks/Storage/SDCard.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Frameworks/Storage/FileStatus.h"
#include "Tests/Support/BoardFixture.h"

namespace {

class SDCardTest : public BoardTest {
protected:
    // The mounts and unmounts of the run.
    std::vector<std::string> Acts() const {
        std::vector<std::string> acts;
        for (const std::string& entry : Board().Trace()) {
            if (entry.rfind("mount ", 0) == 0 || entry.rfind("umount ", 0) == 0) {
                acts.push_back(entry);
            }
        }
        return acts;
    }

    static constexpr char MountAct[] = "mount /dev/mmcblk0p1 /mnt/sd-card vfat 16";

    SDCard card;
};

std::atomic<int> deviceSignals{0};

void CountDeviceSignal(int /*signal*/, siginfo_t* /*information*/, void* /*context*/) { ++deviceSignals; }

}  // namespace

TEST_F(SDCardTest, is_present_while_it_is_in_the_slot) {
    EXPECT_TRUE(card.IsPresent());
    Board().PullCard();
    EXPECT_FALSE(card.IsPresent());
    Board().InsertCard();
    EXPECT_TRUE(card.IsPresent());
}

TEST_F(SDCardTest, is_mounted_synchronous_at_its_default_path) {
    EXPECT_FALSE(card.IsMounted());
    EXPECT_TRUE(card.Mount());
    EXPECT_TRUE(card.IsMounted());
    EXPECT_EQ(Acts(), std::vector<std::string>{MountAct});
}

TEST_F(SDCardTest, is_found_anywhere_in_the_table_of_mounts) {
    for (const std::size_t position : {0U, 1013U, 1014U, 1020U, 1024U, 2040U, 3000U}) {
        std::ofstream(Folder() + "/etc/mtab") << std::string(position, '-') << "/mnt/sd-card";
        EXPECT_TRUE(card.IsMounted()) << position;
        std::ofstream(Folder() + "/etc/mtab") << std::string(position, '-') << "/mnt/sd-car";
        EXPECT_FALSE(card.IsMounted()) << position;
    }
}

TEST_F(SDCardTest, is_not_mounted_if_the_table_of_mounts_cannot_be_read) {
    ASSERT_TRUE(card.Mount());
    ASSERT_TRUE(Board().FailCall("read", 1, EIO));
    EXPECT_FALSE(card.IsMounted());
    EXPECT_TRUE(card.IsMounted());
    std::filesystem::remove(Folder() + "/etc/mtab");
    EXPECT_FALSE(card.IsMounted());
}

TEST_F(SDCardTest, makes_its_directory_only_for_its_owner) {
    card.SetMountPath("/mnt/sd-card/deeper");
    ASSERT_FALSE(FileStatus().IsDirectory("/mnt/sd-card/deeper"));
    EXPECT_TRUE(card.Mount());
    struct stat64 status {};
    ASSERT_EQ(stat64((Folder() + "/mnt/sd-card/deeper").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST_F(SDCardTest, is_not_mounted_twice) {
    ASSERT_TRUE(card.Mount());
    EXPECT_TRUE(card.Mount());
    EXPECT_EQ(Acts(), std::vector<std::string>{MountAct});
}

TEST_F(SDCardTest, is_not_mounted_without_a_card) {
    Board().PullCard();
    EXPECT_FALSE(card.Mount());
    EXPECT_EQ(Acts(), std::vector<std::string>{});
}

TEST_F(SDCardTest, is_not_mounted_if_the_kernel_refuses) {
    Board().SetCardWriteProtected(true);
    EXPECT_FALSE(card.Mount());
    EXPECT_FALSE(card.IsMounted());
}

TEST_F(SDCardTest, is_unmounted_once) {
    ASSERT_TRUE(card.Mount());
    EXPECT_TRUE(card.Unmount());
    EXPECT_FALSE(card.IsMounted());
    EXPECT_FALSE(card.Unmount());
}

TEST_F(SDCardTest, is_unmounted_by_the_destructor) {
    {
        SDCard other;
        ASSERT_TRUE(other.Mount());
    }
    EXPECT_EQ(Acts(), (std::vector<std::string>{MountAct, "umount /mnt/sd-card"}));
}

TEST_F(SDCardTest, takes_another_mount_path) {
    EXPECT_EQ(card.GetMountPath(), "/mnt/sd-card");
    EXPECT_TRUE(card.SetMountPath("/mnt/other"));
    EXPECT_EQ(card.GetMountPath(), "/mnt/other");
}

TEST_F(SDCardTest, replaces_an_empty_mount_path_when_it_looks_for_the_mount) {
    EXPECT_TRUE(card.SetMountPath(""));
    EXPECT_EQ(card.GetMountPath(), "");
    EXPECT_FALSE(card.IsMounted());
    EXPECT_EQ(card.GetMountPath(), "/mnt/sd-card");
}

TEST_F(SDCardTest, has_its_switch_set_by_a_high_input) {
    Board().DrivePin(3, 9, true);
    EXPECT_TRUE(card.IsSwitchSet());
    Board().DrivePin(3, 9, false);
    EXPECT_FALSE(card.IsSwitchSet());
}

TEST_F(SDCardTest, has_its_switch_not_set_without_a_card) {
    Board().PullCard();
    Board().DrivePin(3, 9, true);
    EXPECT_FALSE(card.IsSwitchSet());
}

TEST_F(SDCardTest, releases_its_switch_input_after_a_look) {
    card.IsSwitchSet();
    EXPECT_FALSE(Board().Pin(3, 9).claimed);
}

TEST_F(SDCardTest, reports_its_space_beyond_32_bits) {
    Board().SetCardSpace(2000000, 1500000, 4096);
    ASSERT_TRUE(card.Mount());
    EXPECT_EQ(card.GetTotalBytes(), 8192000000);
    EXPECT_EQ(card.GetFreeBytes(), 6144000000);
}

TEST_F(SDCardTest, has_no_space_unless_mounted) {
    EXPECT_EQ(card.GetTotalBytes(), -1);
    EXPECT_EQ(card.GetFreeBytes(), -1);
}

TEST_F(SDCardTest, has_no_space_once_it_is_pulled) {
    ASSERT_TRUE(card.Mount());
    Board().PullCard();
    EXPECT_EQ(card.GetTotalBytes(), -1);
    EXPECT_EQ(card.GetFreeBytes(), -1);
}

TEST_F(SDCardTest, is_below_its_space_by_the_percentage_of_free_bytes) {
    Board().SetCardSpace(1000, 100, 4096);
    ASSERT_TRUE(card.Mount());
    EXPECT_FALSE(card.IsSpaceBelow(90)) << "a tenth is free, which is not less than a tenth";
    EXPECT_TRUE(card.IsSpaceBelow(89));
    EXPECT_TRUE(card.IsSpaceBelow(0));
    EXPECT_FALSE(card.IsSpaceBelow(99));
}

TEST_F(SDCardTest, is_not_below_its_space_above_99_percent) {
    Board().SetCardSpace(1000, 1, 4096);
    ASSERT_TRUE(card.Mount());
    EXPECT_TRUE(card.IsSpaceBelow(99));
    EXPECT_FALSE(card.IsSpaceBelow(100));
    EXPECT_FALSE(card.IsSpaceBelow(255));
}

TEST_F(SDCardTest, is_not_below_an_unknown_or_empty_space) {
    EXPECT_FALSE(card.IsSpaceBelow(50));
    Board().SetCardSpace(1000, 0, 4096);
    ASSERT_TRUE(card.Mount());
    EXPECT_FALSE(card.IsSpaceBelow(50));
}

TEST_F(SDCardTest, asks_the_shell_for_a_status_that_no_command_gives_by_itself) {
    testing::internal::CaptureStdout();
    EXPECT_FALSE(SDCard::IsMountedByShell());
    testing::internal::GetCapturedStdout();
}

TEST_F(SDCardTest, lists_the_mounts_with_their_space) {
    Board().SetCardSpace(1000, 100, 4096);
    ASSERT_TRUE(card.Mount());
    testing::internal::CaptureStdout();
    card.ListMounts();
    std::fflush(stdout);
    const std::string list = testing::internal::GetCapturedStdout();
    const std::size_t at = list.find("/dev/mmcblk0p1 /mnt/sd-card vfat rw,sync");
    ASSERT_NE(at, std::string::npos) << list;
    const std::string line = list.substr(at, list.find('\n', at) - at);
    EXPECT_NE(line.find(" 0 0 size=4096000 free=409600 avail="), std::string::npos) << line;
}

// The kernel would notify about the machine's device folder, so this only tests that the call succeeds.
TEST(SDCardWatch, has_a_handler_called_for_the_signal_that_it_asked_for) {
    SDCard card;
    card.SetMountPath("/nonexistent");
    EXPECT_TRUE(card.WatchDeviceDirectory(CountDeviceSignal));
    deviceSignals = 0;
    raise(SIGRTMIN + 1);
    EXPECT_EQ(deviceSignals, 1);
    EXPECT_TRUE(card.WatchDeviceDirectory(CountDeviceSignal)) << "a further call replaces the first";
    signal(SIGRTMIN + 1, SIG_DFL);
}

TEST(SDCardWatch, holds_one_file_until_the_end_of_the_card) {
    const auto openFiles = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = openFiles();
    {
        SDCard card;
        card.SetMountPath("/nonexistent");
        for (int call = 0; call < 2; ++call) {
            EXPECT_TRUE(card.WatchDeviceDirectory(CountDeviceSignal));
            EXPECT_EQ(openFiles(), before + 1);
        }
    }
    EXPECT_EQ(openFiles(), before);
    signal(SIGRTMIN + 1, SIG_DFL);
}
