#include <fstream>

#include "Tests/Bench/Board/DeviceFiles.h"
#include "Tests/Support/BoardFixture.h"

namespace {

constexpr const char* Export = "/sys/class/pwm/pwmchip0/export";
constexpr const char* Unexport = "/sys/class/pwm/pwmchip0/unexport";
constexpr const char* Enable = "/sys/class/pwm/pwmchip0/pwm1/enable";
constexpr const char* Period = "/sys/class/pwm/pwmchip0/pwm1/period";
constexpr const char* Duty = "/sys/class/pwm/pwmchip0/pwm1/duty_cycle";

class PwmTest : public BoardTest {
protected:
    static void Claim() { ASSERT_EQ(WriteDevice(Export, "1"), 0); }
};

TEST_F(PwmTest, the_chip_has_four_channels) { EXPECT_EQ(ReadDevice("/sys/class/pwm/pwmchip0/npwm"), "4\n"); }

TEST_F(PwmTest, a_channel_exists_from_export_to_unexport) {
    EXPECT_FALSE(std::ifstream("/sys/class/pwm/pwmchip0/pwm1").is_open());
    Claim();
    EXPECT_TRUE(std::ifstream("/sys/class/pwm/pwmchip0/pwm1").is_open());
    EXPECT_FALSE(std::ifstream("/sys/class/pwm/pwmchip0/pwm2").is_open());
    ASSERT_EQ(WriteDevice(Unexport, "1"), 0);
    EXPECT_FALSE(std::ifstream("/sys/class/pwm/pwmchip0/pwm1").is_open());
}

TEST_F(PwmTest, a_second_export_is_busy) {
    Claim();
    EXPECT_EQ(WriteDevice(Export, "1"), EBUSY);
}

TEST_F(PwmTest, a_channel_that_the_chip_has_not_is_no_device) {
    EXPECT_EQ(WriteDevice(Export, "4"), ENODEV);
    EXPECT_EQ(WriteDevice(Unexport, "0"), ENODEV);
}

TEST_F(PwmTest, period_and_duty_read_back) {
    Claim();
    ASSERT_EQ(WriteDevice(Period, "1562500"), 0);
    ASSERT_EQ(WriteDevice(Duty, "781250"), 0);
    ASSERT_EQ(WriteDevice(Enable, "1"), 0);
    EXPECT_EQ(ReadDevice(Period), "1562500\n");
    EXPECT_EQ(ReadDevice(Duty), "781250\n");
    EXPECT_EQ(ReadDevice(Enable), "1\n");
    EXPECT_EQ(Board().Pwm(1).period, 1562500U);
    EXPECT_EQ(Board().Pwm(1).duty, 781250U);
    EXPECT_TRUE(Board().Pwm(1).enabled);
}

TEST_F(PwmTest, a_duty_above_the_period_is_invalid_and_changes_nothing) {
    Claim();
    ASSERT_EQ(WriteDevice(Period, "1000"), 0);
    EXPECT_EQ(WriteDevice(Duty, "1001"), EINVAL);
    EXPECT_EQ(ReadDevice(Duty), "0\n");
}

TEST_F(PwmTest, a_negative_duty_is_invalid) {
    Claim();
    ASSERT_EQ(WriteDevice(Period, "1000"), 0);
    EXPECT_EQ(WriteDevice(Duty, "-1"), EINVAL);
}

TEST_F(PwmTest, a_period_below_the_duty_is_invalid) {
    Claim();
    ASSERT_EQ(WriteDevice(Period, "1000"), 0);
    ASSERT_EQ(WriteDevice(Duty, "500"), 0);
    EXPECT_EQ(WriteDevice(Period, "499"), EINVAL);
    EXPECT_EQ(ReadDevice(Period), "1000\n");
}

TEST_F(PwmTest, a_channel_without_a_period_can_not_be_enabled) {
    Claim();
    EXPECT_EQ(WriteDevice(Enable, "1"), EINVAL);
    EXPECT_EQ(WriteDevice(Enable, "0"), 0);
}

TEST_F(PwmTest, a_refused_write_is_in_the_trace) {
    Claim();
    WriteDevice(Enable, "1");
    EXPECT_EQ(Board().Trace().back(), "/sys/class/pwm/pwmchip0/pwm1/enable=1 !EINVAL");
}

TEST_F(PwmTest, the_stir_channel_turns_the_stir_bar_while_its_chip_is_enabled) {
    ASSERT_EQ(WriteDevice(Export, "2"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/pwm/pwmchip0/pwm2/period", "1562500"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/pwm/pwmchip0/pwm2/duty_cycle", "781250"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/pwm/pwmchip0/pwm2/enable", "1"), 0);
    EXPECT_DOUBLE_EQ(Board().Inputs().stirStepFrequency, 640.0);
    Board().DrivePin(1, 15, true);
    EXPECT_DOUBLE_EQ(Board().Inputs().stirStepFrequency, 0.0);
}

TEST_F(PwmTest, the_light_follows_channel_0) {
    ASSERT_EQ(WriteDevice(Export, "0"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/pwm/pwmchip0/pwm0/period", "1000000"), 0);
    ASSERT_EQ(WriteDevice("/sys/class/pwm/pwmchip0/pwm0/duty_cycle", "250000"), 0);
    EXPECT_DOUBLE_EQ(Board().Inputs().ledDuty, 0.0);
    ASSERT_EQ(WriteDevice("/sys/class/pwm/pwmchip0/pwm0/enable", "1"), 0);
    EXPECT_DOUBLE_EQ(Board().Inputs().ledDuty, 0.25);
}

}  // namespace
