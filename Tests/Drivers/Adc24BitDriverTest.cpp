#include "Drivers/Adc24BitDriver.h"

#include <cerrno>
#include <ctime>
#include <iostream>
#include <thread>

#include "Frameworks/Utilities/Report.h"
#include "Tests/Drivers/DriverTest.h"

using Bench::EndOfConversion;
using Bench::SpiAnswer;

namespace {

class Adc24Bit : public DriverTest {
protected:
    // The bus is open from here on, and a conversion ends at once.
    Adc24Bit() {
        Board().ScriptSpiWrite({SpiAnswer::Fail(EIO)});
        PrintedBy([] { Adc24BitDriver(0).Read(false); });
        TakeTrace();
        Board().SetEndOfConversion(EndOfConversion::StuckLow);
    }

    static Printed ReadFails(Adc24BitDriver& driver) {
        return PrintedBy([&driver] { EXPECT_FALSE(driver.Read(true)); });
    }

    static std::int32_t Converted(std::uint32_t channel, std::int32_t count) {
        Board().ScriptSpiRead({SpiAnswer::Count(count)});
        Adc24BitDriver driver(channel);
        EXPECT_TRUE(driver.Read(true));
        return driver.GetValue();
    }
};

constexpr const char* SelectLow = "mem 0xfffff434=0x00000001";
constexpr const char* SelectHigh = "mem 0xfffff430=0x00000001";

// Reads once more while the reading that called it is on its way.
void ReadAgain(const StdString& /*text*/, LogLevel /*level*/, ControllerType /*origin*/) {
    SetReportFunction(nullptr);
    Adc24BitDriver inner(0);
    EXPECT_FALSE(inner.Read(false));
    std::cout << ", end of the inner reading";
}

}  // namespace

TEST_F(Adc24Bit, a_conversion_writes_the_command_selects_the_chip_and_reads_four_bytes) {
    Board().ScriptSpiRead({SpiAnswer::Count(5)});
    Adc24BitDriver driver(0);
    EXPECT_EQ(PrintedBy([&driver] { EXPECT_TRUE(driver.Read(true)); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"spi write a080", SelectLow, SelectHigh, "spi read 2000 00a0"}));
    EXPECT_EQ(driver.GetRaw(), 0x1000005U);
    EXPECT_EQ(driver.GetValue(), 5);
    EXPECT_EQ(TakeLog(), std::vector<LogCall>{});
}

TEST_F(Adc24Bit, a_new_driver_has_read_nothing) {
    const Adc24BitDriver driver(0);
    EXPECT_EQ(driver.GetRaw(), 0U);
    EXPECT_EQ(driver.GetValue(), 0);
}

TEST_F(Adc24Bit, each_channel_has_its_command_word) {
    const struct {
        std::uint32_t channel;
        const char* written;
    } rows[] = {
        {0, "spi write a080"},   {1, "spi write a180"},   {2, "spi write a280"},   {3, "spi write a380"},
        {4, "spi write a480"},   {5, "spi write a580"},   {6, "spi write a680"},   {7, "spi write a780"},
        {8, "spi write a880"},   {128, "spi write a080"}, {199, "spi write e780"}, {200, "spi write a0c0"},
        {201, "spi write a0c0"},
    };
    for (const auto& row : rows) {
        Board().ScriptSpiRead({SpiAnswer::Count(0)});
        EXPECT_TRUE(Adc24BitDriver(row.channel).Read(false));
        EXPECT_EQ(TakeTrace().front(), row.written) << row.channel;
    }
}

TEST_F(Adc24Bit, the_highest_bit_of_a_reading_is_set_for_a_value_that_is_not_negative) {
    EXPECT_EQ(Converted(0, 0), 0);
    EXPECT_EQ(Converted(0, -1), -1);
    EXPECT_EQ(Converted(0, 0xFFFFFF), 16777215);
    EXPECT_EQ(Converted(0, -0x1000000), -16777216);
}

TEST_F(Adc24Bit, the_bits_around_the_reading_do_not_count) {
    Board().ScriptSpiRead({SpiAnswer::Words(0xE000, 0x001F), SpiAnswer::Words(0xDFFF, 0xFFFF)});
    Adc24BitDriver driver(0);
    EXPECT_TRUE(driver.Read(true));
    EXPECT_EQ(driver.GetRaw(), 0x1000000U);
    EXPECT_EQ(driver.GetValue(), 0);
    EXPECT_TRUE(driver.Read(true));
    EXPECT_EQ(driver.GetRaw(), 0x0FFFFFFU);
    EXPECT_EQ(driver.GetValue(), -1);
}

TEST_F(Adc24Bit, the_internal_temperature_is_converted_to_hundredths_of_a_degree) {
    EXPECT_EQ(Converted(200, 0), -27300);
    EXPECT_EQ(Converted(200, 171444), 0);
    EXPECT_EQ(Converted(200, 187000), 2477);
    EXPECT_EQ(Converted(200, 16777215), 2644230);
    EXPECT_EQ(Converted(200, -16777216), -2698831);
}

TEST_F(Adc24Bit, any_other_channel_gives_a_good_reading_and_no_conversion) {
    for (const std::uint32_t channel : {1U, 6U, 199U, 201U}) {
        Board().ScriptSpiRead({SpiAnswer::Count(77)});
        Adc24BitDriver driver(channel);
        EXPECT_EQ(ReadFails(driver), Silence);
        EXPECT_EQ(driver.GetRaw(), 0x100004DU);
        EXPECT_EQ(driver.GetValue(), 77);
    }
}

TEST_F(Adc24Bit, without_conversion_any_channel_is_read_and_the_value_stays) {
    Board().ScriptSpiRead({SpiAnswer::Count(77)});
    Adc24BitDriver driver(1);
    EXPECT_TRUE(driver.Read(false));
    EXPECT_EQ(driver.GetRaw(), 0x100004DU);
    EXPECT_EQ(driver.GetValue(), 0);
}

TEST_F(Adc24Bit, a_conversion_that_never_ends_is_given_up_after_25_tries) {
    Board().SetEndOfConversion(EndOfConversion::StuckHigh);
    const std::uint64_t accesses = Board().CallCount("mmap");
    Adc24BitDriver driver(0);
    EXPECT_EQ(ReadFails(driver), OnOutput("24 Bit ADC Driver: Conversion did not finish in allotted time"));
    EXPECT_EQ(driver.GetRaw(), 0xFFFFFFFFU);
    EXPECT_EQ(TakeTrace(), (Texts{"spi write a080", SelectLow, SelectHigh}));
    EXPECT_EQ(Board().CallCount("mmap") - accesses, 25U + 2U);
}

TEST_F(Adc24Bit, the_wait_for_the_end_of_conversion_spins_10_ms_before_each_look) {
    Board().SetEndOfConversion(EndOfConversion::StuckHigh);
    const std::clock_t start = std::clock();
    Adc24BitDriver driver(0);
    ReadFails(driver);
    EXPECT_GE(std::clock() - start, 250 * (CLOCKS_PER_SEC / 1000));
}

TEST_F(Adc24Bit, a_reading_that_timed_out_is_not_converted) {
    Board().SetEndOfConversion(EndOfConversion::StuckHigh);
    Adc24BitDriver driver(0);
    ReadFails(driver);
    EXPECT_EQ(PrintedBy([&driver] { EXPECT_FALSE(driver.Convert()); }),
              OnOutput("24 Bit ADC Driver: ADC reading error or object not valid"));
}

TEST_F(Adc24Bit, a_line_that_cannot_be_read_counts_as_a_try) {
    FailCall("mmap", 2, EPERM);  // after the chip select
    const std::uint64_t accesses = Board().CallCount("mmap");
    Board().ScriptSpiRead({SpiAnswer::Count(5)});
    Adc24BitDriver driver(0);
    EXPECT_EQ(PrintedBy([&driver] { EXPECT_TRUE(driver.Read(true)); }), OnError("mmap failed"));
    EXPECT_EQ(Board().CallCount("mmap") - accesses, 4U);
    EXPECT_EQ(driver.GetValue(), 5);
}

TEST_F(Adc24Bit, a_command_that_does_not_go_out_ends_the_reading) {
    Board().ScriptSpiWrite({SpiAnswer::Short(1)});
    Adc24BitDriver driver(0);
    EXPECT_EQ(ReadFails(driver), OnOutput("24 Bit ADC Driver: SPI write failed"));
    EXPECT_EQ(TakeTrace().size(), 1U);
}

TEST_F(Adc24Bit, a_chip_that_cannot_be_selected_ends_the_reading) {
    FailCall("mmap", 1, EPERM);
    Adc24BitDriver driver(0);
    EXPECT_EQ(ReadFails(driver), (Printed{"24 Bit ADC Driver: Setting chip select low failed", "mmap failed"}));
    EXPECT_EQ(TakeTrace(), (Texts{"spi write a080"}));
}

TEST_F(Adc24Bit, a_chip_that_cannot_be_deselected_ends_the_reading) {
    FailCall("mmap", 3, EPERM);
    Adc24BitDriver driver(0);
    EXPECT_EQ(ReadFails(driver), (Printed{"24 Bit ADC Driver: Setting chip select high failed", "mmap failed"}));
    EXPECT_EQ(TakeTrace(), (Texts{"spi write a080", SelectLow}));
    EXPECT_EQ(driver.GetRaw(), 0U);
}

TEST_F(Adc24Bit, a_failed_read_is_reported_and_passes_as_the_lower_limit) {
    Board().ScriptSpiRead({SpiAnswer::Count(5), SpiAnswer::Fail(EIO)});
    Adc24BitDriver driver(0);
    driver.Read(true);
    EXPECT_EQ(PrintedBy([&driver] { EXPECT_TRUE(driver.Read(true)); }), OnOutput("24 Bit ADC Driver: SPI read failed"));
    EXPECT_EQ(driver.GetRaw(), 0U);
    EXPECT_EQ(driver.GetValue(), -16777216);
}

TEST_F(Adc24Bit, the_lock_is_free_again_after_each_failure) {
    Adc24BitDriver driver(0);
    Board().ScriptSpiWrite({SpiAnswer::Fail(EIO)});
    ReadFails(driver);
    FailCall("mmap", 1, EPERM);
    ReadFails(driver);
    FailCall("mmap", 3, EPERM);
    ReadFails(driver);
    Board().ScriptSpiRead({SpiAnswer::Count(5)});
    EXPECT_EQ(PrintedBy([&driver] { EXPECT_TRUE(driver.Read(true)); }), Silence);
}

TEST_F(Adc24Bit, a_reading_inside_a_reading_fails_at_the_lock_and_leaves_the_outer_one_alone) {
    Board().ScriptSpiRead({SpiAnswer::Count(5)});
    FailCall("mmap", 2, EPERM);
    SetReportFunction(ReadAgain);
    Adc24BitDriver outer(0);
    EXPECT_EQ(PrintedBy([&outer] { EXPECT_TRUE(outer.Read(true)); }),
              (Printed{"24 Bit ADC Driver: ADC mutex lock failed"
                       "24 Bit ADC Driver: ADC mutex unlock failed"
                       ", end of the inner reading",
                       "mmap failed"}));
    EXPECT_EQ(TakeTrace(), (Texts{"spi write a080", SelectLow, SelectHigh, "spi read 2000 00a0"}));
}

TEST_F(Adc24Bit, threads_that_read_at_once_take_turns) {
    constexpr int Readings = 8;
    const auto readMany = [](std::uint32_t channel) {
        for (int i = 0; i < Readings; ++i) {
            EXPECT_TRUE(Adc24BitDriver(channel).Read(false));
        }
    };
    std::thread first(readMany, 0);
    std::thread second(readMany, 1);
    first.join();
    second.join();
    const Texts trace = TakeTrace();
    ASSERT_EQ(trace.size(), 2U * Readings * 4U);
    for (std::size_t i = 0; i < trace.size(); i += 4) {
        EXPECT_TRUE(trace[i].starts_with("spi write ")) << i;
        EXPECT_EQ(trace[i + 1], SelectLow);
        EXPECT_EQ(trace[i + 2], SelectHigh);
        EXPECT_TRUE(trace[i + 3].starts_with("spi read ")) << i;
    }
}
