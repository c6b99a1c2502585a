#include "Bench/Console/Settings.h"

#include <gtest/gtest.h>

#include "Tests/Support/BenchRun.h"

namespace Bench {
namespace {

std::string Refusal(const std::string& text) {
    const TemporaryFolder folder;
    const std::string path = folder / "c.xml";
    WriteFile(path, text);
    AnalyzerSettings settings;
    std::string error;
    EXPECT_FALSE(ReadAnalyzerSettings(path, settings, error));
    const std::size_t at = error.find(path);
    return at == std::string::npos ? error : error.replace(at, path.size(), "FILE");
}

constexpr const char* Name = "<INFO_ITEM name=\"LogMeasurementDataFileName\" value=\"Measurement.csv\"/>";

TEST(Settings, sample_configuration_gives_what_the_bench_needs) {
    AnalyzerSettings settings;
    std::string error;
    ASSERT_TRUE(ReadAnalyzerSettings(SOURCE_FOLDER "/configuration/analyzer.conf.xml", settings, error)) << error;
    EXPECT_EQ(settings.cellConstant, 2.4);
    EXPECT_EQ(settings.measurementFileName, "Measurement.csv");
    EXPECT_EQ(settings.durations.size(), 19U);
    EXPECT_EQ(settings.durations["Mixing"], 15.0);
    EXPECT_NEAR(settings.cycleSeconds, 150.0, 15.0);
}

TEST(Settings, items_are_read_over_several_lines_and_in_any_order_of_attributes) {
    const TemporaryFolder folder;
    WriteFile(folder / "c.xml", std::string("<INFO_ITEM value=\"1714.818182\"\n  description=\"a > b\"\n"
                                            "  name=\"Other\"/><INFO_ITEM\n\tvalue='x' value=\"3.5\"\n"
                                            "  name=\"ColorimeterCellConstant\"/>") +
                                    Name);
    AnalyzerSettings settings;
    std::string error;
    ASSERT_TRUE(ReadAnalyzerSettings(folder / "c.xml", settings, error)) << error;
    EXPECT_EQ(settings.cellConstant, 3.5);
}

TEST(Settings, file_that_is_not_there_is_named) {
    AnalyzerSettings settings;
    std::string error;
    EXPECT_FALSE(ReadAnalyzerSettings("/nowhere/c.xml", settings, error));
    EXPECT_EQ(error, "can't read the configuration /nowhere/c.xml");
}

TEST(Settings, folder_is_no_configuration) {
    AnalyzerSettings settings;
    std::string error;
    EXPECT_FALSE(ReadAnalyzerSettings("/tmp", settings, error));
    EXPECT_EQ(error, "can't read the configuration /tmp");
}

TEST(Settings, configuration_without_a_cell_constant_is_refused) {
    EXPECT_EQ(Refusal(std::string("<ROOT_ANALYZER>") + Name),
              "the configuration FILE gives no ColorimeterCellConstant above 0");
}

TEST(Settings, cell_constant_that_is_no_positive_number_is_refused) {
    for (const char* value : {"0", "-2", "nan", "inf", "abc", ""}) {
        EXPECT_EQ(Refusal(std::string(Name) + "<INFO_ITEM name=\"ColorimeterCellConstant\" value=\"" + value + "\"/>"),
                  "the configuration FILE gives no ColorimeterCellConstant above 0")
            << value;
    }
}

TEST(Settings, configuration_without_a_measurement_file_is_refused) {
    EXPECT_EQ(Refusal("<INFO_ITEM name=\"ColorimeterCellConstant\" value=\"2.4\"/>"),
              "the configuration FILE gives no LogMeasurementDataFileName");
}

TEST(Settings, a_setting_is_changed_in_place) {
    std::string text =
        "<INFO_ITEM name=\"A\" value=\"1\"/><INFO_ITEM\n value=\"0.5\"\tname=\"B\" unit=\"u\"/>"
        "<INFO_ITEM name=\"B\" value=\"3\"/>";
    EXPECT_TRUE(SetSetting(text, "B", "12.75"));
    EXPECT_EQ(text,
              "<INFO_ITEM name=\"A\" value=\"1\"/><INFO_ITEM\n value=\"12.75\"\tname=\"B\" unit=\"u\"/>"
              "<INFO_ITEM name=\"B\" value=\"3\"/>");
    EXPECT_FALSE(SetSetting(text, "C", "1"));
}

TEST(Settings, broken_tags_do_no_harm) {
    EXPECT_EQ(Refusal("<INFO_ITEM name=\"ColorimeterCellConstant\" value=\"2.4"),
              "the configuration FILE gives no ColorimeterCellConstant above 0");
    EXPECT_EQ(Refusal("<INFO_ITEM name=\"ColorimeterCellConstant\" value=\"2.4>"),
              "the configuration FILE gives no ColorimeterCellConstant above 0");
}

}  // namespace
}  // namespace Bench
