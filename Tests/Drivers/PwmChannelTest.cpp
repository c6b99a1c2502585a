#include "Drivers/PwmChannel.h"

#include <cerrno>
#include <memory>

#include "Tests/Drivers/DriverTest.h"

namespace {

class Pwm : public DriverTest {
protected:
    // Of the calls that one Set makes on a channel that is switched off, the number of the open of each file.
    static constexpr int OpenOfReset = 4;  // after the directory, and directory and file of the state
    static constexpr int OpenOfPeriod = 5;
    static constexpr int OpenOfDuty = 6;

    static Texts SetUp(const std::string& period, const std::string& duty) {
        return {"/sys/class/pwm/pwmchip0/pwm0/duty_cycle=0", "/sys/class/pwm/pwmchip0/pwm0/period=" + period,
                "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=" + duty, "/sys/class/pwm/pwmchip0/pwm0/enable=1"};
    }
};

}  // namespace

TEST_F(Pwm, the_channel_count_is_the_code_of_its_first_character) { EXPECT_EQ(PwmChannel::ChannelCount(), 52U); }

TEST_F(Pwm, without_the_chip_the_channel_count_is_0) {
    SetFault("pwm-missing");
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(PwmChannel::ChannelCount(), 0U); }), Silence);
}

TEST_F(Pwm, a_channel_is_claimed_and_left_as_it_is) {
    const PwmChannel channel(0);
    EXPECT_TRUE(channel.IsValid());
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/export=0"}));
    EXPECT_FALSE(channel.IsEnabled());
}

TEST_F(Pwm, a_channel_with_frequency_and_duty_starts_enabled) {
    const PwmChannel channel(0, 1000.0F, 50.0F);
    EXPECT_TRUE(channel.IsValid());
    EXPECT_TRUE(channel.IsEnabled());
    EXPECT_EQ(TakeTrace(),
              (Texts{"/sys/class/pwm/pwmchip0/export=0", "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=0",
                     "/sys/class/pwm/pwmchip0/pwm0/period=1000000", "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=500000",
                     "/sys/class/pwm/pwmchip0/pwm0/enable=1"}));
    EXPECT_EQ(channel.GetFrequency(), 1000.0F);
    EXPECT_EQ(channel.GetDutyCycle(), 50.0F);
}

TEST_F(Pwm, the_destructor_disables_and_releases_the_channel) {
    EXPECT_EQ(PrintedBy([] {
                  const PwmChannel channel(3, 1000.0F, 50.0F);
                  TakeTrace();
              }),
              Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/pwm3/enable=0", "/sys/class/pwm/pwmchip0/unexport=3"}));
}

TEST_F(Pwm, a_channel_that_cannot_be_disabled_is_not_released) {
    auto channel = std::make_unique<PwmChannel>(0);
    FailCall("open", 2, EACCES);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&channel] { channel.reset(); }), OnError("unable to enable a pwm"));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_TRUE(Board().Pwm(0).exported);
}

TEST_F(Pwm, a_second_object_on_a_channel_is_refused_and_touches_nothing) {
    const PwmChannel first(0, 1000.0F, 50.0F);
    TakeTrace();
    std::unique_ptr<PwmChannel> second;
    EXPECT_EQ(PrintedBy([&second] { second = std::make_unique<PwmChannel>(0, 200.0F, 10.0F); }),
              OnError("already used\n"));
    EXPECT_FALSE(second->IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_EQ(second->GetFrequency(), 200.0F);
    EXPECT_EQ(second->GetDutyCycle(), 10.0F);
}

TEST_F(Pwm, a_second_plain_object_on_a_channel_is_refused_too) {
    const PwmChannel first(0);
    std::unique_ptr<PwmChannel> second;
    EXPECT_EQ(PrintedBy([&second] { second = std::make_unique<PwmChannel>(0); }), OnError("already used\n"));
    EXPECT_FALSE(second->IsValid());
}

TEST_F(Pwm, two_channels_keep_separate_directories) {
    const PwmChannel first(1, 1000.0F, 50.0F);
    const PwmChannel second(2, 640.0F, 25.0F);
    EXPECT_EQ(Board().Pwm(1).period, 1000000U);
    EXPECT_EQ(Board().Pwm(1).duty, 500000U);
    EXPECT_EQ(Board().Pwm(2).period, 1562500U);
    EXPECT_EQ(Board().Pwm(2).duty, 390625U);
    EXPECT_TRUE(Board().Pwm(1).enabled);
    EXPECT_TRUE(Board().Pwm(2).enabled);
}

TEST_F(Pwm, a_channel_at_the_count_is_wrong) {
    std::unique_ptr<PwmChannel> channel;
    EXPECT_EQ(PrintedBy([&channel] { channel = std::make_unique<PwmChannel>(52); }), OnError("wrong pwm channel"));
    EXPECT_FALSE(channel->IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Pwm, a_channel_at_the_count_is_wrong_with_frequency_and_duty_too) {
    std::unique_ptr<PwmChannel> channel;
    EXPECT_EQ(PrintedBy([&channel] { channel = std::make_unique<PwmChannel>(52, 1000.0F, 50.0F); }),
              OnError("wrong pwm channel"));
    EXPECT_FALSE(channel->IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Pwm, a_channel_between_the_real_count_and_its_code_fails_at_the_kernel) {
    std::unique_ptr<PwmChannel> channel;
    EXPECT_EQ(PrintedBy([&channel] { channel = std::make_unique<PwmChannel>(4, 1000.0F, 50.0F); }),
              OnError("not locked yet\nunable to set pwm frequency"));
    EXPECT_FALSE(channel->IsValid());
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/export=4 !ENODEV"}));
}

TEST_F(Pwm, a_wrong_channel_leaves_the_others_alone_at_its_end) {
    const PwmChannel good(0, 1000.0F, 50.0F);
    TakeTrace();
    EXPECT_EQ(PrintedBy([] { const PwmChannel wrong(200); }), (Printed{"not locked yet\n", "wrong pwm channel"}));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Pwm, without_an_export_file_the_channel_is_invalid) {
    std::unique_ptr<PwmChannel> channel;
    FailCall("open", 3, EACCES);  // after the count and the channel directory
    EXPECT_EQ(PrintedBy([&channel] { channel = std::make_unique<PwmChannel>(0); }), OnError("unable to lock a pwm"));
    EXPECT_FALSE(channel->IsValid());
}

TEST_F(Pwm, a_channel_is_released_once) {
    PwmChannel channel(0);
    EXPECT_TRUE(channel.Unexport());
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Unexport()); }), OnError("not used yet\n"));
    EXPECT_TRUE(channel.Export());
}

TEST_F(Pwm, without_an_unexport_file_the_release_fails) {
    PwmChannel channel(0);
    FailCall("open", 2, EACCES);
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Unexport()); }), OnError("unable to release a pwm"));
}

TEST_F(Pwm, enabling_writes_1_and_disabling_0) {
    PwmChannel channel(0, 1000.0F, 50.0F);
    TakeTrace();
    EXPECT_TRUE(channel.Enable(false));
    EXPECT_FALSE(channel.IsEnabled());
    EXPECT_TRUE(channel.Enable(true));
    EXPECT_TRUE(channel.IsEnabled());
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/pwm0/enable=0", "/sys/class/pwm/pwmchip0/pwm0/enable=1"}));
}

TEST_F(Pwm, enabling_a_released_channel_is_reported_on_the_output) {
    PwmChannel channel(0);
    channel.Unexport();
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Enable(true)); }), OnOutput("not locked yet\n"));
    EXPECT_TRUE(channel.Export());
}

TEST_F(Pwm, enabling_without_an_enable_file_is_reported_on_the_error_stream) {
    PwmChannel channel(0);
    FailCall("open", 2, EACCES);
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Enable(true)); }), OnError("unable to enable a pwm"));
}

TEST_F(Pwm, a_refused_enabling_goes_unnoticed) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_TRUE(channel.Enable(true)); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/pwm0/enable=1 !EINVAL"}));
}

TEST_F(Pwm, a_released_channel_is_not_enabled_and_prints_it) {
    PwmChannel channel(0);
    channel.Unexport();
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.IsEnabled()); }), OnError("not locked yet\n"));
    EXPECT_TRUE(channel.Export());
}

TEST_F(Pwm, a_channel_whose_state_cannot_be_read_counts_as_enabled) {
    const PwmChannel channel(0);
    FailCall("open", 2, EACCES);
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_TRUE(channel.IsEnabled()); }), Silence);
}

TEST_F(Pwm, a_running_channel_is_disabled_before_it_is_set) {
    PwmChannel channel(0, 1000.0F, 50.0F);
    TakeTrace();
    EXPECT_TRUE(channel.Set(1000.0F, 25.0F));
    EXPECT_EQ(TakeTrace(),
              (Texts{"/sys/class/pwm/pwmchip0/pwm0/enable=0", "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=0",
                     "/sys/class/pwm/pwmchip0/pwm0/period=1000000", "/sys/class/pwm/pwmchip0/pwm0/duty_cycle=250000",
                     "/sys/class/pwm/pwmchip0/pwm0/enable=1"}));
}

TEST_F(Pwm, a_channel_that_is_off_is_switched_on_by_setting_it) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_TRUE(channel.Set(1000.0F, 50.0F));
    EXPECT_EQ(TakeTrace(), SetUp("1000000", "500000"));
}

TEST_F(Pwm, period_and_duty_are_truncated_to_nanoseconds) {
    const struct {
        float frequency;
        float dutyCycle;
        const char* period;
        const char* duty;
    } rows[] = {
        {1000.0F, 0.0F, "1000000", "0"},
        {640.0F, 50.0F, "1562500", "781250"},
        {7777.0F, 12.5F, "128584", "16073"},
        {1e8F, 100.0F, "10", "10"},
        // What 32-bit floats lose in these, no other order of the operations loses.
        {3.0F, 33.0F, "333333344", "110000008"},
        {7.0F, 33.3F, "142857136", "47571424"},
    };
    for (const auto& row : rows) {
        PwmChannel channel(0);
        TakeTrace();
        EXPECT_TRUE(channel.Set(row.frequency, row.dutyCycle));
        EXPECT_EQ(TakeTrace(), SetUp(row.period, row.duty));
    }
}

TEST_F(Pwm, a_frequency_of_a_half_is_stored_as_1_and_written_as_it_is) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_TRUE(channel.Set(0.5F, 50.0F));
    EXPECT_EQ(channel.GetFrequency(), 1.0F);
    EXPECT_EQ(TakeTrace(), SetUp("2000000000", "1000000000"));
}

TEST_F(Pwm, what_is_stored_is_held_within_its_limits) {
    PwmChannel channel(0);
    channel.Set(2e8F, 101.0F);
    EXPECT_EQ(channel.GetFrequency(), 1e8F);
    EXPECT_EQ(channel.GetDutyCycle(), 100.0F);
    channel.Set(-1.0F, -1.0F);
    EXPECT_EQ(channel.GetFrequency(), 1.0F);
    EXPECT_EQ(channel.GetDutyCycle(), 0.0F);
}

TEST_F(Pwm, a_channel_with_frequency_and_duty_stores_them_within_their_limits) {
    const PwmChannel channel(0, 0.25F, 150.0F);
    EXPECT_EQ(channel.GetFrequency(), 1.0F);
    EXPECT_EQ(channel.GetDutyCycle(), 100.0F);
}

TEST_F(Pwm, a_duty_below_0_is_refused_by_the_chip_and_goes_unnoticed) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_TRUE(channel.Set(1000.0F, -1.0F)); }), Silence);
    EXPECT_EQ(TakeTrace(), SetUp("1000000", "-10000 !EINVAL"));
    EXPECT_EQ(Board().Pwm(0).duty, 0U);
    EXPECT_TRUE(Board().Pwm(0).enabled);
}

TEST_F(Pwm, a_duty_above_100_is_refused_by_the_chip_and_goes_unnoticed) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_TRUE(channel.Set(1000.0F, 101.0F)); }), Silence);
    EXPECT_EQ(TakeTrace(), SetUp("1000000", "1010000 !EINVAL"));
    EXPECT_EQ(Board().Pwm(0).duty, 0U);
}

TEST_F(Pwm, a_period_that_no_integer_holds_is_the_greatest) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_TRUE(channel.Set(0.0F, 0.5F));
    EXPECT_EQ(TakeTrace(), SetUp("2147483647", "2147483647"));
}

TEST_F(Pwm, a_period_that_no_integer_holds_is_the_least_below_0) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_TRUE(channel.Set(-0.1F, 100.0F));
    EXPECT_EQ(TakeTrace()[1], "/sys/class/pwm/pwmchip0/pwm0/period=-2147483648 !EINVAL");
}

TEST_F(Pwm, a_duty_that_is_no_number_is_0) {
    PwmChannel channel(0);
    TakeTrace();
    EXPECT_TRUE(channel.Set(0.0F, 0.0F));  // nothing of an endless period
    EXPECT_EQ(TakeTrace(), SetUp("2147483647", "0"));
}

TEST_F(Pwm, setting_the_frequency_keeps_the_duty) {
    PwmChannel channel(0, 1000.0F, 25.0F);
    channel.Enable(false);
    TakeTrace();
    EXPECT_TRUE(channel.SetFrequency(2000.0F));
    EXPECT_EQ(TakeTrace(), SetUp("500000", "125000"));
}

TEST_F(Pwm, setting_the_duty_keeps_the_frequency) {
    PwmChannel channel(0, 1000.0F, 25.0F);
    channel.Enable(false);
    TakeTrace();
    EXPECT_TRUE(channel.SetDutyCycle(75.0F));
    EXPECT_EQ(TakeTrace(), SetUp("1000000", "750000"));
}

TEST_F(Pwm, a_duty_after_one_that_was_too_high_uses_the_stored_frequency) {
    PwmChannel channel(0);
    channel.Set(0.5F, 50.0F);
    channel.Enable(false);
    TakeTrace();
    EXPECT_TRUE(channel.SetDutyCycle(10.0F));
    EXPECT_EQ(TakeTrace(), SetUp("1000000000", "100000000"));
}

TEST_F(Pwm, a_released_channel_cannot_be_set) {
    PwmChannel channel(0, 1000.0F, 50.0F);
    channel.Unexport();
    TakeTrace();
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Set(500.0F, 25.0F)); }),
              OnError("not locked yet\nunable to set pwm frequency"));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_EQ(channel.GetFrequency(), 1000.0F);
    EXPECT_EQ(channel.GetDutyCycle(), 50.0F);
    EXPECT_TRUE(channel.Export());
}

TEST_F(Pwm, a_channel_that_cannot_be_disabled_cannot_be_set) {
    PwmChannel channel(0, 1000.0F, 50.0F);
    TakeTrace();
    FailCall("open", 5, EACCES);  // directory; directory and state; directory and then the switch
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Set(500.0F, 25.0F)); }),
              OnError("unable to enable a pwmunable to set pwm frequency"));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_EQ(channel.GetFrequency(), 1000.0F);
}

TEST_F(Pwm, a_duty_that_cannot_be_reset_is_reported) {
    PwmChannel channel(0);
    TakeTrace();
    FailCall("open", OpenOfReset, EACCES);
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Set(1000.0F, 50.0F)); }),
              OnError("unable to reset pwm duty cycle"));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Pwm, without_a_period_file_the_channel_stays_off_and_counts_as_set) {
    PwmChannel channel(0);
    TakeTrace();
    FailCall("open", OpenOfPeriod, EACCES);
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_TRUE(channel.Set(1000.0F, 50.0F)); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/pwm/pwmchip0/pwm0/duty_cycle=0"}));
    EXPECT_FALSE(Board().Pwm(0).enabled);
}

TEST_F(Pwm, a_duty_that_cannot_be_set_is_reported) {
    PwmChannel channel(0);
    TakeTrace();
    FailCall("open", OpenOfDuty, EACCES);
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Set(1000.0F, 50.0F)); }),
              OnError("unable to set pwm duty cycle"));
    EXPECT_EQ(TakeTrace(),
              (Texts{"/sys/class/pwm/pwmchip0/pwm0/duty_cycle=0", "/sys/class/pwm/pwmchip0/pwm0/period=1000000"}));
}

TEST_F(Pwm, a_channel_that_cannot_be_switched_on_is_not_set) {
    PwmChannel channel(0);
    FailCall("open", OpenOfDuty + 2, EACCES);
    EXPECT_EQ(PrintedBy([&channel] { EXPECT_FALSE(channel.Set(1000.0F, 50.0F)); }), OnError("unable to enable a pwm"));
}
