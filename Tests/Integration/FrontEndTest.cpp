// The whole system with a front end at the other end of its link.
#include <csignal>

#include "Frameworks/Utilities/Version.h"
#include "Tests/Integration/FrontEndFixture.h"
#include "Tests/Support/ProductProcess.h"

namespace {

class ProductWithFrontEnd : public WithFrontEnd {
protected:
    static constexpr int SecondsToRunning = 20;

    std::unique_ptr<ProductProcess> Product() {
        configuration.Set("AutoStartMeasurement", "true")
            .Set("AutoStartDelay", std::to_string(SecondsToRunning * 1000))
            .LayInto(Folder());
        return std::make_unique<ProductProcess>(Folder(), true);
    }
};

}  // namespace

TEST_F(WithFrontEnd, buttons_move_every_controller_and_the_engine_answers) {
    StartConnected();
    ASSERT_TRUE(frontEnd->SendCode(Bench::FrontEnd::Running));
    EXPECT_TRUE(Wait("CMD", "-2").has_value());
    WaitFor("Changing to RUNNING_STATE State for - SystemControl");
    EXPECT_TRUE(Wait("InstrumentStatus", "Executing LED Adjustment Step").has_value());
    Board().ClearLog();
    ASSERT_TRUE(frontEnd->SendCode(Bench::FrontEnd::Idle));
    EXPECT_TRUE(Wait("InstrumentStatus", "Aborted Measurement Cycle").has_value());
    EXPECT_TRUE(Wait("CMD", "-1").has_value());
    WaitFor("Changing to IDLE_STATE State for - MeasurementEngine");
    EXPECT_EQ(frontEnd->Screen().version, GetVersionText().Text());
}

// The button works only in idle, and the engine primes only while running.
TEST_F(WithFrontEnd, prime_button_reaches_the_engine_in_idle_where_it_does_nothing) {
    StartConnected();
    ASSERT_TRUE(frontEnd->SendCode(Bench::FrontEnd::Prime));
    WaitFor("Sending Command - PRIME_SYSTEM");
    Send(MOVE_TO_TEST);
    WaitFor("Changing to TEST_STATE State for - MeasurementEngine");
    for (const std::string& act : Board().Trace()) {
        EXPECT_EQ(act.find("/sys/class/pwm"), std::string::npos) << act;
    }
}

TEST_F(WithFrontEnd, reset_button_brings_up_a_new_system_that_connects_again) {
    StartConnected();
    ASSERT_TRUE(frontEnd->SendCode(Bench::FrontEnd::Reset));
    JoinAndDestroy();
    EXPECT_TRUE(frontEnd->WaitForEnd(timeout));
    StartConnected();
    ASSERT_TRUE(frontEnd->SendCode(Bench::FrontEnd::Running));
    EXPECT_TRUE(Wait("CMD", "-2").has_value());
}

TEST_F(WithFrontEnd, one_measurement_from_the_lamp_to_the_screen) {
    StartConnected();
    ASSERT_TRUE(frontEnd->SendCode(Bench::FrontEnd::Running));
    const std::optional<Bench::FrontEndFrame> frame = Wait("ChlorineValue");
    ASSERT_TRUE(frame.has_value());
    ASSERT_TRUE(frontEnd->SendCode(Bench::FrontEnd::Idle));
    EXPECT_TRUE(Wait("CMD", "-1").has_value());
    char text[32];
    const auto chlorine = static_cast<float>(ChlorineOnCard());
    std::snprintf(text, sizeof text, "%.2f", static_cast<double>(chlorine));
    EXPECT_EQ(frame->Find("ChlorineValue"), text);
    EXPECT_GT(chlorine, 0.1F);
    EXPECT_TRUE(frame->Find("DateValue").has_value());
}

// No handler is installed, so that the second write to a closed front end ends the process.
TEST_F(ProductWithFrontEnd, a_closed_front_end_ends_the_process_at_a_write) {
    const auto product = Product();
    ASSERT_TRUE(frontEnd->WaitForConnection(timeout));
    frontEnd->Disconnect();
    const int status = product->Wait();
    ASSERT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(WTERMSIG(status), SIGPIPE);
    const std::string empty = "First Part 0\nSecond Part \n";
    std::size_t count = 0;
    const std::string output = product->Output();
    for (std::size_t at = output.find(empty); at != std::string::npos; at = output.find(empty, at + 1)) {
        ++count;
    }
    EXPECT_GT(count, 100U);
}

TEST_F(ProductWithFrontEnd, a_front_end_gets_every_status) {
    const auto product = Product();
    EXPECT_TRUE(Wait("CMD", "-2").has_value());
    EXPECT_TRUE(Wait("InstrumentStatus", "Executing LED Adjustment Step").has_value());
    EXPECT_TRUE(product->IsRunning());
}
