#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

using MemoryTest = BoardTest;

constexpr std::uint32_t OutputSet[] = {0xFFFFF430, 0xFFFFF630, 0xFFFFF830, 0xFFFFFA30};
constexpr std::uint32_t OutputClear[] = {0xFFFFF434, 0xFFFFF634, 0xFFFFF834, 0xFFFFFA34};
constexpr std::uint32_t OutputStatus[] = {0xFFFFF418, 0xFFFFF618, 0xFFFFF818, 0xFFFFFA18};
constexpr std::uint32_t DataStatus[] = {0xFFFFF43C, 0xFFFFF63C, 0xFFFFF83C, 0xFFFFFA3C};

TEST_F(MemoryTest, the_set_register_of_each_bank_sets_its_outputs) {
    for (int bank = 0; bank < 4; ++bank) {
        ASSERT_TRUE(WriteRegister(OutputSet[bank], 1U << bank));
        EXPECT_EQ(ReadRegister(OutputStatus[bank]), 1U << bank);
        EXPECT_EQ(Board().OutputStatus(bank), 1U << bank);
    }
}

TEST_F(MemoryTest, the_clear_register_of_each_bank_clears_its_outputs) {
    for (int bank = 0; bank < 4; ++bank) {
        ASSERT_TRUE(WriteRegister(OutputSet[bank], 0x3));
        ASSERT_TRUE(WriteRegister(OutputClear[bank], 0x1));
        EXPECT_EQ(ReadRegister(OutputStatus[bank]), 0x2U);
    }
}

TEST_F(MemoryTest, the_data_status_shows_what_drives_the_lines) {
    Board().DrivePin(2, 31, true);
    EXPECT_EQ(ReadRegister(DataStatus[2]), 0x80000000);
    EXPECT_EQ(ReadRegister(OutputStatus[2]), 0U);
}

TEST_F(MemoryTest, a_driven_line_wins_over_the_latch_until_it_is_an_output) {
    Board().DrivePin(0, 2, true);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "2"), 0);
    EXPECT_EQ(ReadRegister(DataStatus[0]) & 4U, 4U);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/direction", "out"), 0);
    EXPECT_EQ(ReadRegister(DataStatus[0]) & 4U, 0U);
}

TEST_F(MemoryTest, a_register_write_moves_a_pin_of_the_files_too) {
    ASSERT_EQ(WriteDevice("/sys/class/gpio/export", "2"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/gpio/pioA2/direction", "out"), 0);
    ASSERT_TRUE(WriteRegister(OutputSet[0], 1U << 2));
    EXPECT_EQ(ReadDevice("/sys/class/gpio/pioA2/value"), "1\n");
}

TEST_F(MemoryTest, register_writes_are_traced_and_reads_are_not) {
    WriteRegister(OutputSet[0], 0x1);
    ReadRegister(DataStatus[0]);
    WriteRegister(OutputClear[0], 0x1);
    EXPECT_EQ(Board().Trace(), (std::vector<std::string>{"mem 0xfffff430=0x00000001", "mem 0xfffff434=0x00000001"}));
}

TEST_F(MemoryTest, a_mapping_of_more_than_a_page_is_invalid) {
    const int file = open("/dev/mem", O_RDWR);
    EXPECT_EQ(mmap(nullptr, 8192, PROT_READ, MAP_SHARED, file, static_cast<off_t>(0xFFFFF000U)), MAP_FAILED);
    EXPECT_EQ(errno, EINVAL);
    close(file);
}

TEST_F(MemoryTest, memory_of_the_program_is_mapped_by_the_kernel) {
    void* page = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    static_cast<char*>(page)[0] = 'x';
    EXPECT_EQ(munmap(page, 4096), 0);
}

}  // namespace
