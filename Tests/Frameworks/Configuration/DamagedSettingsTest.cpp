// Settings files with damaged bytes: reading one ends in a state that the system knows.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "Frameworks/Configuration/SystemConfigurationFile.h"
#include "Tests/Frameworks/Configuration/SettingsText.h"

namespace {

constexpr int Rounds = 400;

std::string InstalledText() {
    std::ostringstream text;
    text << std::ifstream(SOURCE_FOLDER "/configuration/analyzer.conf.xml").rdbuf();
    return text.str();
}

// Replaces a few bytes, removes a piece or repeats one.
std::string Damage(std::string text, std::mt19937& random) {
    const auto below = [&random](std::size_t limit) -> std::size_t { return random() % limit; };
    const int count = 1 + static_cast<int>(below(4));
    for (int i = 0; i < count; ++i) {
        const std::size_t at = below(text.size() - 1);
        const std::size_t length = below(std::min<std::size_t>(200, text.size() - at));
        switch (below(3)) {
            case 0:
                text[at] = "<>\"/=& x\xFF\x01"[below(10)];
                break;
            case 1:
                text.erase(at, length);
                break;
            default:
                text.insert(below(text.size()), text.substr(at, length));
                break;
        }
    }
    return text;
}

int SectionsOf(const SystemConfigurationFile& file) {
    int count = 0;
    for (const ConfigurationBase* section : std::initializer_list<const ConfigurationBase*>{
             file.GetGlobalConfigInfo(), file.GetLoggingConfigInfo(), file.GetMeasurementEngineConfigInfo(),
             file.GetRemoteIndicatorControlConfigInfo(), file.GetSystemControlConfigInfo(),
             file.GetSystemMonitoringConfigInfo(), file.GetTestInterfaceConfigInfo()}) {
        count += section == nullptr ? 0 : 1;
    }
    return count;
}

}  // namespace

TEST(DamagedSettings, load_and_read_into_a_state_that_the_system_knows) {
    const auto seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
    SCOPED_TRACE("seed " + std::to_string(seed) + ": replay with --gtest_random_seed");
    std::mt19937 random(seed);
    const TemporaryFolder folder;
    const std::string sound = InstalledText();
    ASSERT_FALSE(sound.empty());
    int loaded = 0;
    for (int round = 0; round < Rounds; ++round) {
        const std::string path = folder.Write("analyzer.conf.xml", Damage(sound, random));
        SystemConfigurationFile file;
        if (!file.Load(path.c_str())) {
            EXPECT_EQ(file.GetDocument(), nullptr);
            EXPECT_FALSE(file.GetXML());
            EXPECT_EQ(SectionsOf(file), 0);
            continue;
        }
        ++loaded;
        EXPECT_NE(file.GetDocument(), nullptr);
        const bool read = file.GetXML();
        EXPECT_TRUE(read || SectionsOf(file) == 0) << "round " << round;
        const MeasurementEngineConfigInfo* measurement = file.GetMeasurementEngineConfigInfo();
        if (measurement != nullptr) {
            EXPECT_NE(measurement->GetMeasurementSteps(), nullptr);
            EXPECT_NE(measurement->GetMeasurementStepOrder(), nullptr);
        }
    }
    EXPECT_GT(loaded, 0);
    EXPECT_LT(loaded, Rounds);
}
