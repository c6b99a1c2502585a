#include "Drivers/MemoryMappedIO.h"

#include <cerrno>

#include "Drivers/PhysicalMemory.h"
#include "Tests/Drivers/DriverTest.h"

namespace {

class Registers : public DriverTest {
protected:
    static std::vector<LogCall> Logged(const char* text) { return {{text, ERROR_LOG_LEVEL, MEASUREMENT_ENGINE}}; }
};

constexpr std::uint32_t OutputStatusOfBank0 = 0xFFFFF418;
constexpr std::uint32_t OutputSetOfBank0 = 0xFFFFF430;

}  // namespace

TEST_F(Registers, a_level_other_than_0_sets_the_bit_of_the_pin_in_its_bank) {
    for (std::uint32_t bank = 0; bank < 4; ++bank) {
        EXPECT_TRUE(MemoryMappedIO::WritePin({bank, 5 + bank}, bank + 1));
    }
    EXPECT_EQ(TakeTrace(), (Texts{"mem 0xfffff430=0x00000020", "mem 0xfffff630=0x00000040", "mem 0xfffff830=0x00000080",
                                  "mem 0xfffffa30=0x00000100"}));
}

TEST_F(Registers, level_0_clears_the_bit_of_the_pin_in_its_bank) {
    for (std::uint32_t bank = 0; bank < 4; ++bank) {
        EXPECT_TRUE(MemoryMappedIO::WritePin({bank, 31 * (bank % 2)}, 0));
    }
    EXPECT_EQ(TakeTrace(), (Texts{"mem 0xfffff434=0x00000001", "mem 0xfffff634=0x80000000", "mem 0xfffff834=0x00000001",
                                  "mem 0xfffffa34=0x80000000"}));
}

TEST_F(Registers, reading_a_pin_gives_the_level_of_its_line) {
    for (std::uint32_t bank = 0; bank < 4; ++bank) {
        Board().DrivePin(static_cast<int>(bank), 31, true);
        EXPECT_EQ(MemoryMappedIO::ReadPin({bank, 31}), HIGH_GPIO_LEVEL);
        Board().DrivePin(static_cast<int>(bank), 31, false);
        EXPECT_EQ(MemoryMappedIO::ReadPin({bank, 31}), LOW_GPIO_LEVEL);
    }
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Registers, reading_an_output_gives_what_it_is_driven_to_and_not_the_line) {
    for (std::uint32_t bank = 0; bank < 4; ++bank) {
        Board().DrivePin(static_cast<int>(bank), 7, false);
        MemoryMappedIO::WritePin({bank, 7}, 1);
        EXPECT_EQ(MemoryMappedIO::ReadOutput({bank, 7}), HIGH_GPIO_LEVEL);
        EXPECT_EQ(MemoryMappedIO::ReadPin({bank, 7}), LOW_GPIO_LEVEL);
        MemoryMappedIO::WritePin({bank, 7}, 0);
        EXPECT_EQ(MemoryMappedIO::ReadOutput({bank, 7}), LOW_GPIO_LEVEL);
    }
}

TEST_F(Registers, success_says_nothing) {
    EXPECT_EQ(PrintedBy([] {
                  MemoryMappedIO::WritePin({0, 0}, 1);
                  MemoryMappedIO::ReadPin({0, 0});
                  MemoryMappedIO::ReadOutput({0, 0});
              }),
              Silence);
    EXPECT_EQ(TakeLog(), std::vector<LogCall>{});
}

TEST_F(Registers, a_pin_above_31_is_refused_and_logged) {
    EXPECT_EQ(MemoryMappedIO::ReadPin({0, 32}), ERROR_GPIO_LEVEL);
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - Invalid GPIO pin"));
    EXPECT_FALSE(MemoryMappedIO::WritePin({0, 32}, 1));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - Invalid GPIO pin"));
    EXPECT_EQ(MemoryMappedIO::ReadOutput({0, 32}), LOW_GPIO_LEVEL);
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - Invalid GPIO pin"));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Registers, a_bank_above_3_is_refused_and_logged) {
    EXPECT_EQ(MemoryMappedIO::ReadPin({4, 0}), ERROR_GPIO_LEVEL);
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - Invalid GPIO pin"));
    EXPECT_FALSE(MemoryMappedIO::WritePin({4, 0}, 1));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - Invalid GPIO pin"));
    EXPECT_EQ(MemoryMappedIO::ReadOutput({4, 0}), LOW_GPIO_LEVEL);
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - Invalid GPIO pin"));
}

TEST_F(Registers, a_missing_memory_device_is_printed_and_logged) {
    SetFault("mem-missing");
    EXPECT_EQ(PrintedBy([] {
                  EXPECT_EQ(MemoryMappedIO::ReadPin({0, 0}), ERROR_GPIO_LEVEL);
              }),
              OnError("open mem dev failed"));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - 'Open' error"));
    EXPECT_EQ(PrintedBy([] { EXPECT_FALSE(MemoryMappedIO::WritePin({0, 0}, 1)); }), OnError("open mem dev failed"));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - 'Open' error"));
    EXPECT_EQ(PrintedBy([] {
                  EXPECT_EQ(MemoryMappedIO::ReadOutput({0, 0}), LOW_GPIO_LEVEL);
              }),
              OnError("open mem dev failed"));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - 'Open' error"));
}

TEST_F(Registers, a_page_that_cannot_be_mapped_is_printed_and_logged) {
    FailCall("mmap", 1, EPERM);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(MemoryMappedIO::ReadPin({0, 0}), ERROR_GPIO_LEVEL); }), OnError("mmap failed"));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - 'Read' error"));
    FailCall("mmap", 1, EPERM);
    EXPECT_EQ(PrintedBy([] { EXPECT_FALSE(MemoryMappedIO::WritePin({0, 0}, 1)); }), OnError("mmap failed"));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - 'Write' error"));
    FailCall("mmap", 1, EPERM);
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(MemoryMappedIO::ReadOutput({0, 0}), LOW_GPIO_LEVEL); }), OnError("mmap failed"));
    EXPECT_EQ(TakeLog(), Logged("MemoryMappedIO - 'Read' error"));
}

TEST_F(Registers, the_memory_device_is_closed_after_each_access) {
    const std::size_t files = OpenFiles();
    MemoryMappedIO::WritePin({0, 0}, 1);
    MemoryMappedIO::ReadPin({0, 0});
    FailCall("mmap", 1, EPERM);
    PrintedBy([] { MemoryMappedIO::ReadOutput({0, 0}); });
    EXPECT_EQ(OpenFiles(), files);
}

TEST_F(Registers, a_word_is_written_at_its_place_in_the_page) {
    PhysicalMemory memory;
    EXPECT_TRUE(memory.Open());
    EXPECT_TRUE(memory.WriteWord(OutputSetOfBank0, 0x80000003));
    std::uint32_t word = 0;
    EXPECT_TRUE(memory.ReadWord(OutputStatusOfBank0, word));
    EXPECT_EQ(word, 0x80000003U);
    EXPECT_EQ(TakeTrace(), (Texts{"mem 0xfffff430=0x80000003"}));
}

TEST_F(Registers, memory_that_is_not_open_cannot_be_mapped) {
    PhysicalMemory memory;
    std::uint32_t word = 7;
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(memory.ReadWord(OutputStatusOfBank0, word)); }), OnError("mmap failed"));
    EXPECT_EQ(word, 7U);
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(memory.WriteWord(OutputSetOfBank0, 1)); }), OnError("mmap failed"));
}

TEST_F(Registers, memory_that_is_opened_again_keeps_one_descriptor) {
    PhysicalMemory memory;
    EXPECT_TRUE(memory.Open());
    const std::size_t files = OpenFiles();
    EXPECT_TRUE(memory.Open());
    EXPECT_EQ(OpenFiles(), files);
}

TEST_F(Registers, closed_memory_can_be_opened_again) {
    PhysicalMemory memory;
    EXPECT_TRUE(memory.Open());
    memory.Close();
    memory.Close();
    EXPECT_TRUE(memory.Open());
    std::uint32_t word = 0;
    EXPECT_TRUE(memory.ReadWord(OutputStatusOfBank0, word));
}
