#include "Drivers/ADC.h"

#include <cerrno>

#include "Drivers/DeviceFile.h"
#include "Tests/Drivers/DriverTest.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

class OnChip : public DriverTest {
protected:
    static constexpr std::uint32_t Input = 3;

    OnChip() { EXPECT_TRUE(m_adc.Open(Input)); }

    ADC m_adc;
};

}  // namespace

TEST_F(OnChip, inputs_0_to_11_can_be_opened) {
    EXPECT_EQ(PrintedBy([] {
                  for (std::uint32_t input = 0; input < 12; ++input) {
                      EXPECT_TRUE(ADC().Open(input)) << input;
                  }
              }),
              Silence);
}

TEST_F(OnChip, input_12_is_refused_without_touching_the_file_system) {
    const std::uint64_t opens = Board().CallCount("open");
    ADC adc;
    EXPECT_EQ(PrintedBy([&adc] { EXPECT_FALSE(adc.Open(12)); }), OnError("ADC: device does not exist"));
    EXPECT_EQ(Board().CallCount("open"), opens);
}

TEST_F(OnChip, an_input_below_0_is_refused) {
    ADC adc;
    EXPECT_EQ(PrintedBy([&adc] { EXPECT_FALSE(adc.Open(static_cast<std::uint32_t>(-1))); }),
              OnError("ADC: device does not exist"));
}

TEST_F(OnChip, a_missing_converter_is_reported) {
    SetFault("iio-missing");
    ADC adc;
    EXPECT_EQ(PrintedBy([&adc] { EXPECT_FALSE(adc.Open(6)); }), OnError("ADC: device does not exist"));
}

TEST_F(OnChip, before_it_is_opened_nothing_is_read_and_nothing_said) {
    const ADC adc;
    std::int32_t counts = 7;
    float voltage = 7.0F;
    EXPECT_EQ(PrintedBy([&] {
                  EXPECT_FALSE(adc.ReadRaw(counts));
                  EXPECT_FALSE(adc.ReadVoltage(voltage));
              }),
              Silence);
    EXPECT_EQ(counts, 7);
    EXPECT_EQ(voltage, 7.0F);
}

TEST_F(OnChip, the_raw_counts_are_those_of_the_opened_input) {
    Board().SetIioRaw(3, 321);
    Board().SetIioRaw(4, 654);
    std::int32_t counts = 0;
    EXPECT_TRUE(m_adc.ReadRaw(counts));
    EXPECT_EQ(counts, 321);
    EXPECT_TRUE(m_adc.Open(4));
    EXPECT_TRUE(m_adc.ReadRaw(counts));
    EXPECT_EQ(counts, 654);
}

TEST_F(OnChip, a_refused_input_keeps_the_opened_one) {
    Board().SetIioRaw(3, 321);
    PrintedBy([this] { EXPECT_FALSE(m_adc.Open(12)); });
    std::int32_t counts = 0;
    EXPECT_TRUE(m_adc.ReadRaw(counts));
    EXPECT_EQ(counts, 321);
}

TEST_F(OnChip, the_scale_is_a_number_with_a_fraction) {
    Board().SetIioScale("3.222656250");
    float scale = 0.0F;
    EXPECT_TRUE(m_adc.ReadScale(scale));
    EXPECT_EQ(scale, 3.22265625F);
}

TEST_F(OnChip, the_scale_is_the_number_that_the_text_begins_with) {
    const struct {
        const char* text;
        float scale;
    } rows[] = {{" \t\n+1.5", 1.5F}, {"2.5e-1V", 0.25F}, {"-.5 mV", -0.5F}, {"0x10", 0.0F}, {"1.5.5", 1.5F}};
    for (const auto& row : rows) {
        Board().SetIioScale(row.text);
        float scale = 7.0F;
        EXPECT_TRUE(m_adc.ReadScale(scale)) << row.text;
        EXPECT_EQ(scale, row.scale) << row.text;
    }
}

TEST_F(OnChip, the_voltage_is_counts_times_scale_by_1024_in_this_order) {
    const struct {
        int raw;
        const char* scale;
        float voltage;
    } rows[] = {
        {512, "2.0", 1.0F},
        {1023, "3.3", 1023.0F * 3.3F / 1024.0F},
        {0, "3.3", 0.0F},
        {-4, "0.5", -0.001953125F},
    };
    for (const auto& row : rows) {
        Board().SetIioRaw(3, row.raw);
        Board().SetIioScale(row.scale);
        float voltage = 7.0F;
        EXPECT_TRUE(m_adc.ReadVoltage(voltage));
        EXPECT_EQ(voltage, row.voltage);
    }
}

TEST_F(OnChip, raw_counts_that_do_not_open_are_reported) {
    std::int32_t counts = 7;
    float voltage = 7.0F;
    FailCall("open", 1, EACCES);
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(m_adc.ReadRaw(counts)); }), OnError("ADC: can't read raw counts"));
    FailCall("open", 1, EACCES);
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(m_adc.ReadVoltage(voltage)); }), OnError("ADC: can't read raw counts"));
    EXPECT_EQ(counts, 7);
    EXPECT_EQ(voltage, 7.0F);
}

TEST_F(OnChip, raw_counts_that_cannot_be_read_are_reported) {
    std::int32_t counts = 7;
    FailCall("read", 1, EIO);
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(m_adc.ReadRaw(counts)); }), OnError("ADC: can't read raw counts"));
    EXPECT_EQ(counts, 7);
}

TEST_F(OnChip, a_scale_that_does_not_open_is_reported) {
    float number = 7.0F;
    FailCall("open", 1, EACCES);
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(m_adc.ReadScale(number)); }), OnError("ADC: can't read the reference"));
    FailCall("open", 2, EACCES);
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(m_adc.ReadVoltage(number)); }), OnError("ADC: can't read the reference"));
    EXPECT_EQ(number, 7.0F);
}

TEST_F(OnChip, a_scale_that_is_no_number_is_reported) {
    float scale = 7.0F;
    for (const char* text : {"", "volt", "nan", "inf", "1e", "1e+", "1e39", "-", "."}) {
        Board().SetIioScale(text);
        EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(m_adc.ReadScale(scale)); }), OnError("ADC: can't read the reference"));
    }
    EXPECT_EQ(scale, 7.0F);
}

TEST_F(OnChip, no_read_leaves_a_file_open) {
    const std::size_t files = OpenFiles();
    float voltage = 0.0F;
    m_adc.ReadVoltage(voltage);
    EXPECT_EQ(OpenFiles(), files);
}

TEST(DeviceFile, reads_a_file_to_its_last_byte) {
    const TemporaryFolder folder;
    std::string text = "before";
    EXPECT_TRUE(DeviceFile::ReadText(folder.Write("one", "7"), text));
    EXPECT_EQ(text, "7");
    EXPECT_TRUE(DeviceFile::ReadText(folder.Write("none", ""), text));
    EXPECT_EQ(text, "");
}

TEST(DeviceFile, opens_a_directory_and_no_file_as_one) {
    const TemporaryFolder folder;
    EXPECT_TRUE(DeviceFile::DirectoryOpens(folder.Path()));
    EXPECT_FALSE(DeviceFile::DirectoryOpens(folder.Write("file", "7")));
    EXPECT_FALSE(DeviceFile::DirectoryOpens(folder / "nothing"));
}
