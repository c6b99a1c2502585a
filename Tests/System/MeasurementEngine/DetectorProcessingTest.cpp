#include "System/MeasurementEngine/DetectorProcessing.h"

#include <numeric>

#include "Drivers/SpiDevice.h"
#include "System/MeasurementEngine/SampleStatistics.h"
#include "Tests/System/MeasurementEngine/MeasurementFixture.h"

namespace {

class Detector : public MeasurementFixture {
protected:
    Detector() {
        detector.SetSpiDevice(&device);
        step.stepType = NO_LIGHT_STEP;
        step.adcMonitorOn = true;
        step.duration = 1;  // one reading
    }

    void Sample() {
        detector.SetStep(&step);
        ASSERT_TRUE(detector.Start());
        detector.Join();
    }

    double SampleOne(const Bench::SpiAnswer& answer) {
        Board().ScriptSpiRead({answer});
        Sample();
        EXPECT_EQ(detector.GetSamples().size(), 1U);
        return detector.GetSamples().front().GetCount();
    }

    SpiDevice device;
    DetectorProcessing detector;
    StepParameters step;
};

std::int64_t MilliSecondsBetween(const TimeInfo& first, const TimeInfo& second) {
    return (std::int64_t{second.GetSeconds()} - first.GetSeconds()) * 1000 +
           (second.GetNanoSeconds() - first.GetNanoSeconds()) / 1000000;
}

}  // namespace

TEST_F(Detector, is_named_after_its_class) { EXPECT_EQ(detector.GetThreadName(), "DetectorProcessing"); }

TEST_F(Detector, a_reading_is_a_command_and_after_250_ms_a_read_of_two_words) {
    Board().ScriptSpiRead({Bench::SpiAnswer::Words(0x2000, 0x0020)});
    Board().ClearTrace();
    Sample();
    EXPECT_EQ(Board().Trace(), (Texts{"spi write a080", "spi read 2000 0020"}));
    EXPECT_THAT(Between("spi write a080", "spi read 2000 0020"), IsWaitOf(0.25));
    EXPECT_EQ(detector.GetSamples().front().GetCount(), 1.0);
}

TEST_F(Detector, negative_counts_are_read_with_their_sign) {
    EXPECT_EQ(SampleOne(Bench::SpiAnswer::Count(-16777216)), -16777216.0);
    EXPECT_EQ(SampleOne(Bench::SpiAnswer::Count(-1)), -1.0);
    EXPECT_EQ(SampleOne(Bench::SpiAnswer::Count(16777215)), 16777215.0);
}

TEST_F(Detector, a_bus_that_gives_back_the_command_counts_as_zero) {
    EXPECT_EQ(SampleOne(Bench::SpiAnswer::Echo()), 0.0);
}

TEST_F(Detector, a_word_of_ones_counts_as_zero) { EXPECT_EQ(SampleOne(Bench::SpiAnswer::Raw(0xFFFFFFFF)), 0.0); }

TEST_F(Detector, a_failed_read_passes_as_the_lowest_count) {
    EXPECT_EQ(SampleOne(Bench::SpiAnswer::Fail(5)), -16777216.0);
}

TEST_F(Detector, a_step_of_1000_ms_gives_4_or_5_samples) {
    step.duration = 1000;
    Sample();
    EXPECT_GE(detector.GetSamples().size(), 4U);
    EXPECT_LE(detector.GetSamples().size(), 5U);
}

TEST_F(Detector, a_step_of_no_duration_takes_no_reading_and_all_means_are_zero) {
    step.duration = 0;
    Board().ClearTrace();
    Sample();
    EXPECT_EQ(Board().Trace(), Texts{});
    EXPECT_TRUE(detector.GetSamples().empty());
    EXPECT_EQ(detector.GetRawMean(), 0.0);
    EXPECT_EQ(detector.GetRawDeviation(), 0.0);
    EXPECT_EQ(detector.GetTrimmedMean(0, 0), 0.0);
    EXPECT_EQ(detector.GetTrimmedDeviation(0, 0), 0.0);
}

TEST_F(Detector, samples_run_past_the_end_of_a_step_that_crosses_a_second) {
    Board().JumpClock(0.7);  // 1500 ms from here end in the middle of a second
    step.duration = 1500;
    const TimeInfo began;
    Sample();
    EXPECT_GE(MilliSecondsBetween(began, detector.GetSamples().back().GetTime()), 1500);
}

TEST_F(Detector, kill_does_not_cut_a_step_short) {
    step.duration = 1000;
    const TimeInfo began;
    detector.SetStep(&step);
    ASSERT_TRUE(detector.Start());
    detector.Kill();
    detector.Join();
    EXPECT_GE(MilliSecondsBetween(began, detector.GetSamples().back().GetTime()), 1000);
}

TEST_F(Detector, a_trimmed_computation_sorts_the_counts_and_leaves_the_samples) {
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(900), Bench::SpiAnswer::Count(10), Bench::SpiAnswer::Count(30),
                           Bench::SpiAnswer::Count(-100), Bench::SpiAnswer::Count(20)});
    step.duration = 5000;
    Sample();
    std::vector<double> counts;
    for (const DetectorInformation& sample : detector.GetSamples()) {
        counts.push_back(sample.GetCount());
    }
    ASSERT_GE(counts.size(), 5U);
    EXPECT_EQ(std::vector<double>(counts.begin(), counts.begin() + 5), (std::vector<double>{900, 10, 30, -100, 20}));
    const double rawMean = detector.GetRawMean();
    const double rawDeviation = detector.GetRawDeviation();
    EXPECT_EQ(rawMean, RawMean(counts));

    std::vector<double> sorted = counts;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(detector.GetTrimmedMean(2, 1), TrimmedMean(sorted, 2, 1));
    EXPECT_EQ(detector.GetTrimmedDeviation(2, 1), TrimmedDeviation(sorted, 2, 1));
    EXPECT_EQ(detector.GetRawMean(), rawMean);
    EXPECT_EQ(detector.GetRawDeviation(), rawDeviation);
    EXPECT_EQ(detector.GetSamples().front().GetCount(), 900.0);
}

TEST_F(Detector, setting_a_step_forgets_the_samples) {
    Sample();
    ASSERT_FALSE(detector.GetSamples().empty());
    detector.SetStep(&step);
    EXPECT_TRUE(detector.GetSamples().empty());
    EXPECT_EQ(detector.GetTrimmedMean(0, 0), 0.0);
}

TEST_F(Detector, a_start_forgets_the_samples) {
    Sample();
    Board().ScriptSpiRead({Bench::SpiAnswer::Count(77)});
    ASSERT_TRUE(detector.Start());
    detector.Join();
    ASSERT_EQ(detector.GetSamples().size(), 1U);
    EXPECT_EQ(detector.GetTrimmedMean(0, 0), 77.0);
}

TEST_F(Detector, without_the_flag_in_the_step_no_thread_runs) {
    step.adcMonitorOn = false;
    detector.SetStep(&step);
    EXPECT_FALSE(detector.Start());
    EXPECT_EQ(detector.GetThreadId(), pthread_t{0});
    detector.Join();
    EXPECT_TRUE(detector.GetSamples().empty());
}

TEST_F(Detector, without_a_device_no_thread_runs) {
    detector.SetSpiDevice(nullptr);
    detector.SetStep(&step);
    EXPECT_FALSE(detector.Start());
    EXPECT_EQ(detector.GetThreadId(), pthread_t{0});
}

TEST_F(Detector, a_refused_start_forgets_the_step) {
    step.adcMonitorOn = false;
    detector.SetStep(&step);
    EXPECT_FALSE(detector.Start());
    step.adcMonitorOn = true;
    EXPECT_FALSE(detector.Start());
}

TEST_F(Detector, a_join_clears_the_thread_id) {
    Sample();
    EXPECT_EQ(detector.GetThreadId(), pthread_t{0});
}
