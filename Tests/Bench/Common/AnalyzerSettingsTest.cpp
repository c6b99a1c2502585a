#include "Bench/Common/AnalyzerSettings.h"

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

TEST(Settings, first_duration_of_a_step_counts) {
    const TemporaryFolder folder;
    const std::string step =
        "<MEASUREMENT_STEP><INFO_ITEM name=\"Step\" value=\"Mixing\"/><INFO_ITEM "
        "name=\"Duration\" value=\"";
    WriteFile(folder / "c.xml", std::string("<A><INFO_ITEM name=\"ColorimeterCellConstant\" value='3.5'/>") + Name +
                                    step + "3000\"/></MEASUREMENT_STEP>" + step + "4000\"/></MEASUREMENT_STEP></A>");
    AnalyzerSettings settings;
    std::string error;
    ASSERT_TRUE(ReadAnalyzerSettings(folder / "c.xml", settings, error)) << error;
    EXPECT_EQ(settings.cellConstant, 3.5);
    EXPECT_EQ(settings.durations, (std::map<std::string, double>{{"Mixing", 3.0}}));
    EXPECT_EQ(settings.cycleSeconds, 3.0);
}

}  // namespace
}  // namespace Bench
