#include "Bench/Common/BenchFolder.h"

#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"

namespace Bench {
namespace {

namespace fs = std::filesystem;

TEST(BenchFolder, missing_folder_is_made_with_those_above_it) {
    const TemporaryFolder top;
    BenchFolder folder;
    std::string error;
    ASSERT_TRUE(folder.Take(top / "a/b", error)) << error;
    EXPECT_EQ(folder.Path(), top / "a/b");
    EXPECT_EQ(folder.Card(), top / "a/b/card");
    EXPECT_TRUE(fs::is_regular_file(top / "a/b/.bench-folder"));
}

TEST(BenchFolder, empty_folder_is_taken) {
    const TemporaryFolder top;
    BenchFolder folder;
    std::string error;
    EXPECT_TRUE(folder.Take(top.Path() + "/", error)) << error;
    EXPECT_EQ(folder.Path(), top.Path());
}

TEST(BenchFolder, foreign_folder_is_left_unchanged) {
    const TemporaryFolder top;
    WriteFile(top / "letter", "dear");
    BenchFolder folder;
    std::string error;
    EXPECT_FALSE(folder.Take(top.Path(), error));
    EXPECT_EQ(error, top.Path() + " is neither empty nor a bench folder; left unchanged");
    EXPECT_EQ(ReadFile(top / "letter"), "dear");
    EXPECT_FALSE(fs::exists(top / ".bench-folder"));
}

TEST(BenchFolder, file_is_refused) {
    const TemporaryFolder top;
    WriteFile(top / "letter", "dear");
    BenchFolder folder;
    std::string error;
    EXPECT_FALSE(folder.Take(top / "letter", error));
    EXPECT_EQ(error, top / "letter is not a folder");
}

TEST(BenchFolder, next_run_empties_it) {
    const TemporaryFolder top;
    std::string error;
    {
        BenchFolder folder;
        ASSERT_TRUE(folder.Take(top / "b", error));
        fs::create_directories(top / "b/card/deep");
        WriteFile(top / "b/card/deep/2026-12-31_Status.csv", "old");
    }
    BenchFolder folder;
    ASSERT_TRUE(folder.Take(top / "b", error)) << error;
    EXPECT_FALSE(fs::exists(top / "b/card"));
}

TEST(BenchFolder, target_of_a_link_in_it_is_kept) {
    const TemporaryFolder top;
    std::string error;
    {
        BenchFolder folder;
        ASSERT_TRUE(folder.Take(top / "b", error));
    }
    fs::create_directory(top / "mine");
    WriteFile(top / "mine/letter", "dear");
    fs::create_directory_symlink(top / "mine", top / "b/link");
    BenchFolder folder;
    ASSERT_TRUE(folder.Take(top / "b", error)) << error;
    EXPECT_EQ(ReadFile(top / "mine/letter"), "dear");
    EXPECT_FALSE(fs::exists(top / "b/link"));
}

TEST(BenchFolder, second_run_in_the_same_folder_is_refused) {
    const TemporaryFolder top;
    BenchFolder first;
    BenchFolder second;
    std::string error;
    ASSERT_TRUE(first.Take(top / "b", error));
    WriteFile(top / "b/of-the-first", "run");
    EXPECT_FALSE(second.Take(top / "b", error));
    EXPECT_EQ(error, "another run uses the folder " + (top / "b"));
    EXPECT_EQ(ReadFile(top / "b/of-the-first"), "run");
}

TEST(BenchFolder, analyzer_finds_its_folders_and_its_configuration) {
    const TemporaryFolder top;
    BenchFolder folder;
    std::string error;
    ASSERT_TRUE(folder.Take(top / "b", error));
    ASSERT_TRUE(folder.Fill("<ROOT_ANALYZER/>", CLIPS_FOLDER, error)) << error;
    EXPECT_EQ(ReadFile(top / "b/usr/share/vorn/bin/configuration/analyzer.conf.xml"), "<ROOT_ANALYZER/>");
    EXPECT_TRUE(fs::is_directory(top / "b/var/log/vorn/data"));
    EXPECT_TRUE(fs::is_directory(top / "b/card"));
}

TEST(BenchFolder, analyzer_finds_its_sounds) {
    const TemporaryFolder top;
    BenchFolder folder;
    std::string error;
    ASSERT_TRUE(folder.Take(top / "b", error));
    ASSERT_TRUE(folder.Fill("", CLIPS_FOLDER, error)) << error;
    for (const char* clip : {"alert.wav", "alarm.wav"}) {
        const std::string laid = ReadFile(top / "b/usr/share/vorn/bin/" + clip);
        EXPECT_EQ(laid.substr(0, 4), "RIFF") << clip;
        EXPECT_EQ(laid, ReadFile(std::string(CLIPS_FOLDER "/") + clip)) << clip;
    }
}

TEST(BenchFolder, missing_sounds_are_named) {
    const TemporaryFolder top;
    BenchFolder folder;
    std::string error;
    ASSERT_TRUE(folder.Take(top / "b", error));
    EXPECT_FALSE(folder.Fill("", top / "none", error));
    EXPECT_EQ(error, "can't copy the sounds from " + (top / "none") + ": No such file or directory");
}

TEST(BenchFolder, vanished_folder_is_named) {
    const TemporaryFolder top;
    BenchFolder folder;
    std::string error;
    ASSERT_TRUE(folder.Take(top / "b", error));
    fs::remove_all(top / "b");
    WriteFile(top / "b", "a file now");
    EXPECT_FALSE(folder.Fill("", CLIPS_FOLDER, error));
    EXPECT_EQ(error, "can't make the folder " + (top / "b/card") + ": Not a directory");
}

}  // namespace
}  // namespace Bench
