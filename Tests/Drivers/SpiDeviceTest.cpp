#include "Drivers/SpiDevice.h"

#include <array>
#include <cerrno>
#include <memory>

#include "Tests/Drivers/DriverTest.h"

using Bench::SpiAnswer;

namespace {

class Spi : public DriverTest {
protected:
    static constexpr const char* Path = "/dev/spidev32765.1";
};

}  // namespace

TEST_F(Spi, opening_sets_mode_word_and_speed_of_the_converter_and_reads_each_back) {
    const SpiDevice device;
    EXPECT_TRUE(device.IsOpen());
    EXPECT_EQ(TakeTrace(),
              (Texts{"ioctl /dev/spidev32765.1 0x40016b01=0", "ioctl /dev/spidev32765.1 0x80016b01",
                     "ioctl /dev/spidev32765.1 0x40016b03=16", "ioctl /dev/spidev32765.1 0x80016b03",
                     "ioctl /dev/spidev32765.1 0x40046b04=3000000", "ioctl /dev/spidev32765.1 0x80046b04"}));
}

TEST_F(Spi, opening_sets_the_given_mode_word_and_speed) {
    const SpiDevice device(Path, 3, 500000, 8);
    EXPECT_TRUE(device.IsOpen());
    EXPECT_EQ(TakeTrace(),
              (Texts{"ioctl /dev/spidev32765.1 0x40016b01=3", "ioctl /dev/spidev32765.1 0x80016b01",
                     "ioctl /dev/spidev32765.1 0x40016b03=8", "ioctl /dev/spidev32765.1 0x80016b03",
                     "ioctl /dev/spidev32765.1 0x40046b04=500000", "ioctl /dev/spidev32765.1 0x80046b04"}));
}

TEST_F(Spi, the_first_setting_that_fails_ends_the_opening_with_its_text) {
    const char* texts[] = {
        "Could not set SPIMode (WR)...ioctl fail",         "Could not set SPIMode (RD)...ioctl fail",
        "Could not set SPI bitsPerWord (WR)...ioctl fail", "Could not set SPI bitsPerWord(RD)...ioctl fail",
        "Could not set SPI speed (WR)...ioctl fail",       "Could not set SPI speed (RD)...ioctl fail",
    };
    int n = 0;
    for (const char* text : texts) {
        const std::uint64_t before = Board().CallCount("ioctl");
        FailCall("ioctl", ++n, EINVAL);
        EXPECT_EQ(PrintedBy([] {
                      const SpiDevice device;
                      EXPECT_FALSE(device.IsOpen());
                  }),
                  OnError(text));
        EXPECT_EQ(Board().CallCount("ioctl") - before, static_cast<std::uint64_t>(n));
    }
}

TEST_F(Spi, a_missing_device_is_reported_and_moves_nothing) {
    SetFault("spi-missing");
    std::unique_ptr<SpiDevice> device;
    EXPECT_EQ(PrintedBy([&device] { device = std::make_unique<SpiDevice>(); }), OnError("could not open SPI device"));
    EXPECT_FALSE(device->IsOpen());
    std::uint16_t word = 0;
    EXPECT_EQ(PrintedBy([&] {
                  EXPECT_FALSE(device->Read(&word, sizeof word));
                  EXPECT_FALSE(device->Write(&word, sizeof word));
              }),
              Silence);
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(device->Transfer(&word, sizeof word)); }),
              OnError("Problem transmitting spi data..ioctl"));
    EXPECT_EQ(PrintedBy([&device] { device.reset(); }), Silence);
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Spi, a_device_that_refused_a_setting_still_reads_and_writes) {
    FailCall("ioctl", 1, EINVAL);
    std::unique_ptr<SpiDevice> device;
    PrintedBy([&device] { device = std::make_unique<SpiDevice>(); });
    const std::uint16_t word = 0xA080;
    EXPECT_TRUE(device->Write(&word, sizeof word));
    EXPECT_EQ(TakeTrace(), (Texts{"spi write a080"}));
}

TEST_F(Spi, the_destructor_closes_the_device) {
    const std::size_t files = OpenFiles();
    EXPECT_EQ(PrintedBy([] { const SpiDevice device; }), Silence);
    EXPECT_EQ(OpenFiles(), files);
}

TEST_F(Spi, a_device_that_does_not_close_is_reported) {
    auto device = std::make_unique<SpiDevice>();
    FailCall("close", 1, EIO);
    EXPECT_EQ(PrintedBy([&device] { device.reset(); }), OnError("Could not close SPI device"));
}

TEST_F(Spi, a_write_succeeds_if_the_whole_length_was_written) {
    const SpiDevice device;
    TakeTrace();
    const std::uint16_t word = 0xA080;
    Board().ScriptSpiWrite({SpiAnswer::Short(1), SpiAnswer::Fail(EIO)});
    EXPECT_EQ(PrintedBy([&] {
                  EXPECT_FALSE(device.Write(&word, sizeof word));
                  EXPECT_FALSE(device.Write(&word, sizeof word));
                  EXPECT_TRUE(device.Write(&word, sizeof word));
              }),
              Silence);
}

TEST_F(Spi, a_read_succeeds_if_the_whole_length_was_read) {
    const SpiDevice device;
    TakeTrace();
    std::array<std::uint16_t, 2> words{};
    Board().ScriptSpiRead({SpiAnswer::Short(2), SpiAnswer::Fail(EIO), SpiAnswer::Words(0x1234, 0x5678)});
    EXPECT_EQ(PrintedBy([&] {
                  EXPECT_FALSE(device.Read(words.data(), sizeof words));
                  EXPECT_FALSE(device.Read(words.data(), sizeof words));
                  EXPECT_TRUE(device.Read(words.data(), sizeof words));
              }),
              Silence);
    EXPECT_EQ(words, (std::array<std::uint16_t, 2>{0x1234, 0x5678}));
}

TEST_F(Spi, a_transfer_replaces_what_went_out_with_what_came_in) {
    const SpiDevice device;
    TakeTrace();
    std::array<std::uint16_t, 2> words{0xA080, 0x0001};
    Board().ScriptSpiRead({SpiAnswer::Words(0x1234, 0x5678)});
    EXPECT_TRUE(device.Transfer(words.data(), sizeof words));
    EXPECT_EQ(words, (std::array<std::uint16_t, 2>{0x1234, 0x5678}));
    EXPECT_EQ(TakeTrace(), (Texts{"spi transfer a080 0001 > 1234 5678"}));
}

TEST_F(Spi, a_transfer_that_fails_is_reported) {
    const SpiDevice device;
    std::uint16_t word = 0;
    Board().ScriptSpiRead({SpiAnswer::Fail(EIO), SpiAnswer::Fail(EIO)});
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(device.Transfer(&word, sizeof word)); }),
              OnError("Problem transmitting spi data..ioctl"));
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(device.TransferWords(&word, sizeof word)); }),
              OnError("Problem transmitting spi data..ioctl"));
}

TEST_F(Spi, a_word_transfer_moves_each_word_of_16_bits_by_itself_in_one_request) {
    const SpiDevice device;
    TakeTrace();
    const std::uint64_t requests = Board().CallCount("ioctl");
    std::array<std::uint16_t, 3> words{0xA080, 0xA180, 0xA280};
    Board().ScriptSpiRead({SpiAnswer::Words(1, 0), SpiAnswer::Words(2, 0), SpiAnswer::Words(3, 0)});
    EXPECT_TRUE(device.TransferWords(words.data(), sizeof words));
    EXPECT_EQ(words, (std::array<std::uint16_t, 3>{1, 2, 3}));
    EXPECT_EQ(TakeTrace(), (Texts{"spi transfer a080 > 0001", "spi transfer a180 > 0002", "spi transfer a280 > 0003"}));
    EXPECT_EQ(Board().CallCount("ioctl") - requests, 1U);
}

TEST_F(Spi, a_word_transfer_of_8_bits_moves_bytes_and_of_9_bits_pairs) {
    std::array<std::uint8_t, 2> bytes{0x80, 0xA0};
    {
        const SpiDevice device(Path, 0, 3000000, 8);
        TakeTrace();
        Board().ScriptSpiRead({SpiAnswer::Words(0x11, 0), SpiAnswer::Words(0x22, 0)});
        EXPECT_TRUE(device.TransferWords(bytes.data(), sizeof bytes));
        EXPECT_EQ(TakeTrace(), (Texts{"spi transfer 80 > 11", "spi transfer a0 > 22"}));
    }
    const SpiDevice device(Path, 0, 3000000, 9);
    TakeTrace();
    Board().ScriptSpiRead({SpiAnswer::Words(0x4433, 0)});
    EXPECT_TRUE(device.TransferWords(bytes.data(), sizeof bytes));
    EXPECT_EQ(TakeTrace(), (Texts{"spi transfer 2211 > 4433"}));
}

TEST_F(Spi, a_word_transfer_of_half_a_word_or_of_too_many_words_is_refused) {
    const SpiDevice device;
    TakeTrace();
    std::array<std::uint16_t, 512> words{};
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(device.TransferWords(words.data(), 3)); }),
              OnError("Problem transmitting spi data..ioctl"));
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(device.TransferWords(words.data(), sizeof words)); }),
              OnError("Problem transmitting spi data..ioctl"));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_TRUE(device.TransferWords(words.data(), sizeof words - sizeof words[0]));
    EXPECT_EQ(TakeTrace().size(), 511U);
}
