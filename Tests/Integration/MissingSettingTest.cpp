// Settings that the product cannot run without: the process ends after it has named the missing setting.
#include <gtest/gtest.h>

#include <csignal>

#include "Tests/Support/BoardFixture.h"
#include "Tests/Support/ProductProcess.h"
#include "Tests/Support/SampleConfiguration.h"

namespace {

class MissingSetting : public BoardTest {
protected:
    MissingSetting() : BoardTest(AtSpeed(100.0)) { configuration.Set("AutoStartDelay", "1000"); }

    void ExpectEndNaming(const std::string& place) {
        configuration.LayInto(Folder());
        ProductProcess product(Folder(), true);
        const int status = product.Wait();
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
        EXPECT_NE(product.Errors().find(place), std::string::npos) << product.Errors();
        bool logged = false;
        for (const Bench::LogLine& line : Board().Log()) {
            logged = logged || line.text.find(place) != std::string::npos;
        }
        EXPECT_TRUE(logged);
    }

    SampleConfiguration configuration;
};

}  // namespace

TEST_F(MissingSetting, of_the_top_controller_ends_the_process) {
    configuration.Remove("DefaultMeasurementTimeout");
    ExpectEndNaming("section SYSTEM_CONTROL_INFO has no key DefaultMeasurementTimeout");
}

TEST_F(MissingSetting, of_logging_ends_the_process) {
    configuration.Remove("LogDataFilePath");
    ExpectEndNaming("section LOGGING_INFO has no key LogDataFilePath");
}

TEST_F(MissingSetting, of_the_remote_indicator_ends_the_process) {
    configuration.Remove("CableResistancePerFoot");
    ExpectEndNaming("section REMOTE_INDICATOR_INFO has no key CableResistancePerFoot");
}

TEST_F(MissingSetting, of_the_system_monitor_ends_the_process) {
    configuration.Remove("AckTimeout");
    ExpectEndNaming("section SYSTEM_MONITOR_INFO has no key AckTimeout");
}

TEST_F(MissingSetting, of_the_measurement_ends_the_process_at_the_first_priming) {
    configuration.Remove("LEDSettleTime");
    ExpectEndNaming("section MEASUREMENT_ENGINE_INFO has no key LEDSettleTime");
}
