#include "Frameworks/Storage/MemoryMappedFile.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

class CountingFile : public MemoryMappedFile {
public:
    bool IsMapped() const override {
        ++asked;
        return true;
    }
    mutable int asked = 0;
};

}  // namespace

TEST(MemoryMappedFile, begins_without_mapping_name_or_mode) {
    const MemoryMappedFile file;
    EXPECT_FALSE(file.IsMapped());
    EXPECT_EQ(file.GetName(), "");
    EXPECT_EQ(file.GetMode(), "");
}

TEST(MemoryMappedFile, keeps_its_name_and_opens_nothing) {
    const std::string name = testing::TempDir() + "mapped-" + std::to_string(getpid());
    const MemoryMappedFile file{StdString(name)};
    EXPECT_EQ(file.GetName(), name.c_str());
    EXPECT_EQ(file.GetMode(), "");
    EXPECT_FALSE(file.IsMapped());
    EXPECT_FALSE(std::filesystem::exists(name));
}

TEST(MemoryMappedFile, can_do_nothing_without_a_mapping) {
    MemoryMappedFile file;
    char byte = 'a';
    EXPECT_FALSE(file.Flush());
    EXPECT_FALSE(file.Unmap());
    EXPECT_FALSE(file.Read(&byte, 1));
    EXPECT_FALSE(file.Write(&byte, 1));
    EXPECT_EQ(byte, 'a');
}

TEST(MemoryMappedFile, asks_for_a_mapping_and_can_do_nothing_with_one_either) {
    CountingFile file;
    char byte = 'a';
    EXPECT_FALSE(file.Flush());
    EXPECT_FALSE(file.Unmap());
    EXPECT_FALSE(file.Read(&byte, 1));
    EXPECT_FALSE(file.Write(&byte, 1));
    EXPECT_EQ(byte, 'a');
    EXPECT_EQ(file.asked, 4);
}

TEST(MemoryMappedFile, refuses_no_buffer_and_no_bytes_before_it_asks) {
    CountingFile file;
    char byte = 'a';
    EXPECT_FALSE(file.Read(nullptr, 1));
    EXPECT_FALSE(file.Read(&byte, 0));
    EXPECT_FALSE(file.Write(nullptr, 1));
    EXPECT_FALSE(file.Write(&byte, 0));
    EXPECT_EQ(file.asked, 0);
}
