#include <linux/spi/spidev.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

using Bench::SpiAnswer;

constexpr std::uint16_t Detector = 0xA080;

class SpiTest : public BoardTest {
protected:
    SpiTest() : BoardTest(Fast()), m_file(open("/dev/spidev32765.1", O_RDWR)) {}
    ~SpiTest() override { close(m_file); }

    static Bench::BoardSetup Fast() {
        Bench::BoardSetup setup;
        setup.speed = 100.0;
        setup.noise = false;
        return setup;
    }

    ssize_t Command(std::uint16_t word) const { return write(m_file, &word, sizeof(word)); }

    // First word in the high half.
    std::uint32_t Words() const {
        std::uint16_t words[2] = {0x5555, 0x5555};
        EXPECT_EQ(read(m_file, words, sizeof(words)), 4);
        return std::uint32_t{words[0]} << 16U | words[1];
    }

    bool Converting() const { return Board().Pin(0, 21).level; }
    void WaitForConversion() const {
        ASSERT_TRUE(Board().WaitUntil([this] { return !Converting(); }));
    }

    int m_file;
};

std::int32_t CountOf(std::uint32_t words) { return static_cast<std::int32_t>(words >> 5U & 0x1FFFFFFU) - 0x1000000; }

TEST_F(SpiTest, the_device_is_a_character_device) {
    struct stat status {};
    ASSERT_EQ(stat("/dev/spidev32765.1", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    ASSERT_EQ(fstat(m_file, &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST_F(SpiTest, mode_bits_and_speed_are_kept_and_traced) {
    std::uint8_t mode = 0;
    std::uint8_t bits = 16;
    std::uint32_t speed = 3000000;
    ASSERT_EQ(ioctl(m_file, SPI_IOC_WR_MODE, &mode), 0);
    ASSERT_EQ(ioctl(m_file, SPI_IOC_WR_BITS_PER_WORD, &bits), 0);
    ASSERT_EQ(ioctl(m_file, SPI_IOC_WR_MAX_SPEED_HZ, &speed), 0);
    bits = 0;
    speed = 0;
    ASSERT_EQ(ioctl(m_file, SPI_IOC_RD_BITS_PER_WORD, &bits), 0);
    ASSERT_EQ(ioctl(m_file, SPI_IOC_RD_MAX_SPEED_HZ, &speed), 0);
    EXPECT_EQ(bits, 16);
    EXPECT_EQ(speed, 3000000U);
    EXPECT_EQ(Board().Trace(), (std::vector<std::string>{
                                   "ioctl /dev/spidev32765.1 0x40016b01=0", "ioctl /dev/spidev32765.1 0x40016b03=16",
                                   "ioctl /dev/spidev32765.1 0x40046b04=3000000", "ioctl /dev/spidev32765.1 0x80016b03",
                                   "ioctl /dev/spidev32765.1 0x80046b04"}));
}

TEST_F(SpiTest, an_unknown_request_is_refused) {
    int value = 0;
    EXPECT_EQ(ioctl(m_file, 0x40046b7f, &value), -1);
    EXPECT_EQ(errno, ENOTTY);
}

TEST_F(SpiTest, end_of_conversion_is_high_while_it_converts) {
    Board().SetConversionTime(1000000);
    EXPECT_FALSE(Converting());
    ASSERT_EQ(Command(Detector), 2);
    EXPECT_TRUE(Converting());
    EXPECT_EQ(ReadRegister(0xFFFFF43C) >> 21U & 1U, 1U);
}

TEST_F(SpiTest, a_conversion_ends_by_itself) {
    ASSERT_EQ(Command(Detector), 2);
    WaitForConversion();
    EXPECT_EQ(ReadRegister(0xFFFFF43C) >> 21U & 1U, 0U);
}

TEST_F(SpiTest, a_dark_detector_reads_its_dark_count) {
    ASSERT_EQ(Command(Detector), 2);
    WaitForConversion();
    EXPECT_EQ(CountOf(Words()), 1500);
}

TEST_F(SpiTest, a_read_before_the_end_gives_all_ones) {
    Board().SetConversionTime(1000000);
    ASSERT_EQ(Command(Detector), 2);
    EXPECT_EQ(Words(), 0xFFFFFFFF);
}

TEST_F(SpiTest, another_channel_gives_its_own_count) {
    Board().SetConverterChannel(3, -5);
    ASSERT_EQ(Command(Detector + 3 * 256), 2);
    WaitForConversion();
    EXPECT_EQ(CountOf(Words()), -5);
}

TEST_F(SpiTest, the_temperature_has_its_own_command) {
    Board().SetConverterChannel(200, 123456);
    ASSERT_EQ(Command(0xA0C0), 2);
    WaitForConversion();
    EXPECT_EQ(CountOf(Words()), 123456);
}

TEST_F(SpiTest, scripted_answers_come_in_turn_and_then_the_model) {
    Board().ScriptSpiRead({SpiAnswer::Words(0x1234, 0x5678), SpiAnswer::Count(-1), SpiAnswer::Echo()});
    ASSERT_EQ(Command(Detector), 2);
    WaitForConversion();
    EXPECT_EQ(Words(), 0x12345678U);
    EXPECT_EQ(Words(), 0xFFFFFFU << 5U);
    EXPECT_EQ(Words(), 0xA0800000U);
    EXPECT_EQ(CountOf(Words()), 1500);
}

TEST_F(SpiTest, a_scripted_read_can_be_short_or_fail) {
    Board().ScriptSpiRead({SpiAnswer::Short(2), SpiAnswer::Fail(EIO)});
    std::uint16_t words[2] = {};
    EXPECT_EQ(read(m_file, words, sizeof(words)), 2);
    EXPECT_EQ(read(m_file, words, sizeof(words)), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(SpiTest, a_scripted_write_can_be_short_or_fail) {
    Board().ScriptSpiWrite({SpiAnswer::Short(1), SpiAnswer::Fail(EIO), SpiAnswer::Words(0, 0)});
    EXPECT_EQ(Command(Detector), 1);
    EXPECT_EQ(Command(Detector), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(Board().CommandCount(), 0U);
    EXPECT_EQ(Command(Detector), 2);
    EXPECT_EQ(Board().LastCommand(), Detector);
}

TEST_F(SpiTest, words_are_traced_in_hexadecimal) {
    Board().ScriptSpiRead({SpiAnswer::Words(0x1234, 0x5678), SpiAnswer::Fail(EIO)});
    Command(Detector);
    Words();
    std::uint16_t words[2] = {};
    EXPECT_EQ(read(m_file, words, sizeof(words)), -1);
    EXPECT_EQ(Board().Trace(), (std::vector<std::string>{"spi write a080", "spi read 1234 5678", "spi read !EIO"}));
}

TEST_F(SpiTest, a_transfer_sends_and_receives_in_the_same_buffer) {
    Board().ScriptSpiRead({SpiAnswer::Words(0x0102, 0x0304)});
    std::uint16_t words[2] = {Detector, 0};
    spi_ioc_transfer transfer{};
    transfer.tx_buf = reinterpret_cast<std::uintptr_t>(words);
    transfer.rx_buf = transfer.tx_buf;
    transfer.len = sizeof(words);
    EXPECT_EQ(ioctl(m_file, SPI_IOC_MESSAGE(1), &transfer), 4);
    EXPECT_EQ(words[0], 0x0102);
    EXPECT_EQ(words[1], 0x0304);
    EXPECT_EQ(Board().LastCommand(), Detector);
    EXPECT_EQ(Board().Trace(), (std::vector<std::string>{"spi transfer a080 0000 > 0102 0304"}));
}

TEST_F(SpiTest, end_of_conversion_can_stick) {
    Board().SetEndOfConversion(Bench::EndOfConversion::StuckHigh);
    EXPECT_TRUE(Converting());
    Board().SetEndOfConversion(Bench::EndOfConversion::StuckLow);
    Board().SetConversionTime(1000000);
    Command(Detector);
    EXPECT_FALSE(Converting());
}

}  // namespace
