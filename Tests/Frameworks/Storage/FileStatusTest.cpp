#include "Frameworks/Storage/FileStatus.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Tests/Support/TemporaryFolder.h"

namespace {

class FileStatusTest : public testing::Test {
protected:
    std::string Path(const std::string& name) const { return m_folder / name; }

    std::string File(const std::string& name, const std::string& content) const {
        return m_folder.Write(name, content);
    }

    // The queries that return true, in the order block, character, directory, FIFO, regular, socket, link.
    static std::string Answers(const StdString& path) {
        FileStatus status;
        std::string answers;
        answers += status.IsBlockDevice(path) ? 'b' : '-';
        answers += status.IsCharacterDevice(path) ? 'c' : '-';
        answers += status.IsDirectory(path) ? 'd' : '-';
        answers += status.IsFifo(path) ? 'p' : '-';
        answers += status.IsRegularFile(path) ? 'r' : '-';
        answers += status.IsSocket(path) ? 's' : '-';
        answers += status.IsSymbolicLink(path) ? 'l' : '-';
        return answers;
    }

private:
    TemporaryFolder m_folder;
};

}  // namespace

TEST_F(FileStatusTest, knows_a_regular_file) { EXPECT_EQ(Answers(File("file", "x")), "----r--"); }

TEST_F(FileStatusTest, knows_a_directory) {
    std::filesystem::create_directory(Path("directory"));
    EXPECT_EQ(Answers(Path("directory")), "--d----");
}

TEST_F(FileStatusTest, knows_a_character_device) { EXPECT_EQ(Answers("/dev/null"), "-c-----"); }

TEST_F(FileStatusTest, knows_a_fifo) {
    ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
    EXPECT_EQ(Answers(Path("fifo")), "---p---");
}

TEST_F(FileStatusTest, knows_a_socket) {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    Path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(Answers(Path("socket")), "-----s-");
    close(descriptor);
}

TEST_F(FileStatusTest, sees_a_link_itself_and_what_it_leads_to) {
    std::filesystem::create_symlink(File("file", "x"), Path("link"));
    EXPECT_EQ(Answers(Path("link")), "----r-l");
}

TEST_F(FileStatusTest, recognizes_a_dangling_link) {
    std::filesystem::create_symlink(Path("nowhere"), Path("link"));
    EXPECT_EQ(Answers(Path("link")), "------l");
}

TEST_F(FileStatusTest, answers_no_for_an_empty_path) { EXPECT_EQ(Answers(""), "-------"); }

TEST_F(FileStatusTest, answers_no_for_a_missing_path) { EXPECT_EQ(Answers(Path("none")), "-------"); }

TEST_F(FileStatusTest, answers_no_again_after_a_yes) {
    FileStatus status;
    ASSERT_TRUE(status.IsRegularFile(File("file", "x")));
    EXPECT_FALSE(status.IsRegularFile(Path("none")));
    EXPECT_FALSE(status.IsRegularFile(""));
}

TEST_F(FileStatusTest, reports_the_size) { EXPECT_EQ(FileStatus().GetSize(File("file", "12345")), 5); }

TEST_F(FileStatusTest, has_size_0_for_an_empty_path) {
    FileStatus status;
    ASSERT_EQ(status.GetSize(File("file", "12345")), 5);
    EXPECT_EQ(status.GetSize(""), 0);
}

TEST_F(FileStatusTest, keeps_the_last_size_if_stat_fails) {
    FileStatus status;
    ASSERT_EQ(status.GetSize(File("file", "12345")), 5);
    EXPECT_EQ(status.GetSize(Path("none")), 5);
}

TEST_F(FileStatusTest, looks_at_a_descriptor) {
    const int descriptor = open(File("file", "1234567").c_str(), O_RDONLY);
    struct stat64 status {};
    EXPECT_TRUE(FileStatus::GetStatus(descriptor, status));
    EXPECT_EQ(status.st_size, 7);
    close(descriptor);
    EXPECT_FALSE(FileStatus::GetStatus(-1, status));
}
