#include "Drivers/GpioPin.h"

#include <cerrno>
#include <thread>

#include "Tests/Drivers/DriverTest.h"

namespace {

class Gpio : public DriverTest {
protected:
    static constexpr std::uint32_t Bank = 1;
    static constexpr std::uint32_t Pin = 15;

    static GpioPin Output() { return {{Bank, Pin}, OUTPUT_GPIO_MODE, NO_GPIO_EDGE}; }
    static GpioPin EdgeInput() { return {{Bank, Pin}, EDGE_GPIO_MODE, BOTH_GPIO_EDGE}; }

    // What a wait sees when the line changes as soon as it waits.
    static GpioLevel WaitWhileDriven(const GpioPin& pin, bool level) {
        const std::uint64_t polls = Board().CallCount("poll");
        std::thread driver([polls, level] {
            EXPECT_TRUE(Board().WaitUntil([polls] { return Board().CallCount("poll") > polls; }));
            Board().DrivePin(Bank, Pin, level);
        });
        const GpioLevel seen = pin.WaitForEdge(60000);
        driver.join();
        return seen;
    }
};

const GpioLevel EveryBitOfALevel[] = {LOW_GPIO_LEVEL, HIGH_GPIO_LEVEL};

}  // namespace

TEST_F(Gpio, a_pin_is_an_input_without_edge_detection_by_default) {
    const GpioPin pin({Bank, Pin});
    EXPECT_TRUE(pin.IsValid());
    EXPECT_EQ(pin.GetMode(), INPUT_GPIO_MODE);
    EXPECT_EQ(pin.GetEdge(), NO_GPIO_EDGE);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/export=47", "/sys/class/gpio/pioB15/direction=in",
                                  "/sys/class/gpio/pioB15/edge=none"}));
}

TEST_F(Gpio, a_pin_with_edge_detection_is_claimed_and_set_up_in_this_order) {
    const GpioPin pin = EdgeInput();
    EXPECT_TRUE(pin.IsValid());
    EXPECT_EQ(pin.GetMode(), EDGE_GPIO_MODE);
    EXPECT_EQ(pin.GetEdge(), BOTH_GPIO_EDGE);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/export=47", "/sys/class/gpio/pioB15/direction=in",
                                  "/sys/class/gpio/pioB15/edge=both"}));
}

TEST_F(Gpio, each_bank_has_its_letter_and_its_range_of_numbers) {
    const struct {
        std::uint32_t bank;
        std::uint32_t pin;
        Texts trace;
    } rows[] = {
        {0, 2, {"/sys/class/gpio/export=2", "/sys/class/gpio/pioA2/direction=in", "/sys/class/gpio/pioA2/edge=none"}},
        {1,
         18,
         {"/sys/class/gpio/export=50", "/sys/class/gpio/pioB18/direction=in", "/sys/class/gpio/pioB18/edge=none"}},
        {2, 0, {"/sys/class/gpio/export=64", "/sys/class/gpio/pioC0/direction=in", "/sys/class/gpio/pioC0/edge=none"}},
        {3,
         31,
         {"/sys/class/gpio/export=127", "/sys/class/gpio/pioD31/direction=in", "/sys/class/gpio/pioD31/edge=none"}},
    };
    for (const auto& row : rows) {
        TakeTrace();
        const GpioPin pin({row.bank, row.pin});
        EXPECT_EQ(TakeTrace(), row.trace);
    }
}

TEST_F(Gpio, the_destructor_releases_the_pin) {
    EXPECT_EQ(PrintedBy([] {
                  const GpioPin pin({Bank, Pin});
                  TakeTrace();
              }),
              Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/unexport=47"}));
    EXPECT_FALSE(Board().Pin(Bank, Pin).claimed);
}

TEST_F(Gpio, a_second_claim_in_the_same_process_is_refused_and_touches_nothing) {
    const GpioPin first = Output();
    TakeTrace();
    std::unique_ptr<GpioPin> second;
    EXPECT_EQ(PrintedBy([&second] {
                  second = std::make_unique<GpioPin>(PinAddress{Bank, Pin});
              }),
              OnError("already used\n"));
    EXPECT_FALSE(second->IsValid());
    EXPECT_TRUE(first.IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_TRUE(Board().Pin(Bank, Pin).output);
    PrintedBy([&second] { second.reset(); });
}

TEST_F(Gpio, the_end_of_a_refused_claim_releases_the_pin_of_the_other) {
    EXPECT_EQ(PrintedBy([] {
                  const GpioPin first = Output();
                  { const GpioPin second = Output(); }
                  EXPECT_FALSE(Board().Pin(Bank, Pin).claimed);
              }),
              OnError("already used\nnot used yet\n"));
}

TEST_F(Gpio, a_pin_above_31_is_refused_on_the_output_when_nothing_else_is_said) {
    std::unique_ptr<GpioPin> pin;
    EXPECT_EQ(PrintedBy([&pin] { pin = std::make_unique<GpioPin>(PinAddress{0, 32}); }), OnOutput("wrong gpio pin"));
    EXPECT_FALSE(pin->IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_EQ(PrintedBy([&pin] { pin.reset(); }), OnError("not used yet\n"));
}

TEST_F(Gpio, a_pin_above_31_is_refused_on_the_error_stream_with_mode_and_edge) {
    std::unique_ptr<GpioPin> pin;
    EXPECT_EQ(PrintedBy([&pin] {
                  pin = std::make_unique<GpioPin>(PinAddress{0, 32}, OUTPUT_GPIO_MODE, NO_GPIO_EDGE);
              }),
              OnError("wrong gpio pin"));
    EXPECT_FALSE(pin->IsValid());
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_EQ(PrintedBy([&pin] { pin.reset(); }), OnError("not used yet\n"));
}

TEST_F(Gpio, a_claim_that_the_kernel_refuses_is_invalid) {
    SetFault("write-refused=export");
    std::unique_ptr<GpioPin> pin;
    EXPECT_EQ(PrintedBy([&pin] {
                  pin = std::make_unique<GpioPin>(PinAddress{Bank, Pin});
              }),
              OnError("unable to lock a gpio"));
    EXPECT_FALSE(pin->IsValid());
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/export=47 !EIO"}));
    EXPECT_EQ(PrintedBy([&pin] { pin.reset(); }), OnError("not used yet\n"));
}

TEST_F(Gpio, without_the_pin_files_a_claim_is_invalid) {
    SetFault("gpio-missing");
    EXPECT_EQ(PrintedBy([] {
                  const GpioPin pin({Bank, Pin});
                  EXPECT_FALSE(pin.IsValid());
              }),
              OnError("unable to lock a gpionot used yet\n"));
}

TEST_F(Gpio, a_release_that_the_kernel_refuses_is_reported) {
    GpioPin pin({Bank, Pin});
    SetFault("write-refused=unexport");
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.Unexport()); }), OnError("unable to release a gpio"));
    ClearFault("write-refused");
}

TEST_F(Gpio, a_pin_that_is_not_claimed_cannot_be_released) {
    GpioPin pin({Bank, Pin});
    EXPECT_TRUE(pin.Unexport());
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.Unexport()); }), OnError("not used yet\n"));
    EXPECT_TRUE(pin.Export());
}

TEST_F(Gpio, every_operation_on_a_released_pin_prints_that_it_is_not_locked) {
    GpioPin pin = EdgeInput();
    pin.Unexport();
    TakeTrace();
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_EQ(pin.Read(), ERROR_GPIO_LEVEL); }), OnError("not locked yet\n"));
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_EQ(pin.WaitForEdge(0), ERROR_GPIO_LEVEL); }), OnError("not locked yet\n"));
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.SetDirection(OUTPUT_GPIO_MODE)); }), OnError("not locked yet\n"));
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.SetEdge(NO_GPIO_EDGE)); }), OnError("not locked yet\n"));
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.SetModeAndEdge(OUTPUT_GPIO_MODE, NO_GPIO_EDGE)); }),
              OnError("not locked yet\n"));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_TRUE(pin.Export());
}

TEST_F(Gpio, writing_to_a_released_output_prints_that_it_is_not_locked) {
    GpioPin pin = Output();
    pin.Unexport();
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.Write(1)); }), OnError("not locked yet\n"));
    EXPECT_TRUE(pin.Export());
}

TEST_F(Gpio, the_direction_is_out_for_an_output_and_in_for_any_other_mode) {
    GpioPin pin({Bank, Pin});
    TakeTrace();
    for (const GpioMode mode : {OUTPUT_GPIO_MODE, INPUT_GPIO_MODE, EDGE_GPIO_MODE, static_cast<GpioMode>(7)}) {
        EXPECT_TRUE(pin.SetDirection(mode));
        EXPECT_EQ(pin.GetMode(), mode);
    }
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/pioB15/direction=out", "/sys/class/gpio/pioB15/direction=in",
                                  "/sys/class/gpio/pioB15/direction=in", "/sys/class/gpio/pioB15/direction=in"}));
}

TEST_F(Gpio, a_refused_direction_is_reported_and_keeps_the_mode) {
    GpioPin pin({Bank, Pin});
    SetFault("write-refused=direction");
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.SetDirection(OUTPUT_GPIO_MODE)); }),
              OnError("unable to set the gpio mode"));
    EXPECT_EQ(pin.GetMode(), INPUT_GPIO_MODE);
}

TEST_F(Gpio, each_edge_has_its_text_and_an_unknown_one_is_none) {
    GpioPin pin({Bank, Pin});
    TakeTrace();
    for (const GpioEdge edge :
         {NO_GPIO_EDGE, RISING_GPIO_EDGE, FALLING_GPIO_EDGE, BOTH_GPIO_EDGE, static_cast<GpioEdge>(4)}) {
        EXPECT_TRUE(pin.SetEdge(edge));
        EXPECT_EQ(pin.GetEdge(), edge);
    }
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/pioB15/edge=none", "/sys/class/gpio/pioB15/edge=rising",
                                  "/sys/class/gpio/pioB15/edge=falling", "/sys/class/gpio/pioB15/edge=both",
                                  "/sys/class/gpio/pioB15/edge=none"}));
}

TEST_F(Gpio, a_refused_edge_is_reported_and_keeps_the_edge) {
    GpioPin pin({Bank, Pin});
    SetFault("write-refused=edge");
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.SetEdge(RISING_GPIO_EDGE)); }),
              OnError("unable to set the gpio trigger"));
    EXPECT_EQ(pin.GetEdge(), NO_GPIO_EDGE);
}

TEST_F(Gpio, an_edge_counts_in_edge_mode_only) {
    GpioPin pin({Bank, Pin});
    TakeTrace();
    EXPECT_TRUE(pin.SetModeAndEdge(INPUT_GPIO_MODE, BOTH_GPIO_EDGE));
    EXPECT_TRUE(pin.SetModeAndEdge(OUTPUT_GPIO_MODE, BOTH_GPIO_EDGE));
    EXPECT_TRUE(pin.SetModeAndEdge(EDGE_GPIO_MODE, FALLING_GPIO_EDGE));
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/pioB15/direction=in", "/sys/class/gpio/pioB15/edge=none",
                                  "/sys/class/gpio/pioB15/direction=out", "/sys/class/gpio/pioB15/edge=none",
                                  "/sys/class/gpio/pioB15/direction=in", "/sys/class/gpio/pioB15/edge=falling"}));
}

TEST_F(Gpio, reading_gives_the_level_of_the_line) {
    const GpioPin pin({Bank, Pin});
    for (const GpioLevel level : EveryBitOfALevel) {
        Board().DrivePin(Bank, Pin, level == HIGH_GPIO_LEVEL);
        EXPECT_EQ(pin.Read(), level);
    }
}

TEST_F(Gpio, a_value_file_that_does_not_open_reads_low_without_a_text) {
    const GpioPin pin({Bank, Pin});
    Board().DrivePin(Bank, Pin, true);
    FailCall("open", 2, EACCES);
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_EQ(pin.Read(), LOW_GPIO_LEVEL); }), Silence);
    EXPECT_EQ(pin.Read(), HIGH_GPIO_LEVEL);
}

TEST_F(Gpio, writing_to_an_input_is_false_and_silent) {
    GpioPin pin({Bank, Pin});
    TakeTrace();
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.Write(1)); }), Silence);
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Gpio, writing_to_an_input_with_edge_detection_is_false_and_silent) {
    GpioPin pin = EdgeInput();
    TakeTrace();
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.Write(1)); }), Silence);
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Gpio, only_level_1_writes_high) {
    GpioPin pin = Output();
    TakeTrace();
    for (const std::int32_t level : {1, 0, 2, -1}) {
        EXPECT_TRUE(pin.Write(level));
    }
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/pioB15/value=1", "/sys/class/gpio/pioB15/value=0",
                                  "/sys/class/gpio/pioB15/value=0", "/sys/class/gpio/pioB15/value=0"}));
}

TEST_F(Gpio, a_refused_level_is_reported) {
    GpioPin pin = Output();
    SetFault("write-refused=value");
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_FALSE(pin.Write(1)); }), OnError("unable to set the gpio value"));
}

TEST_F(Gpio, waiting_on_a_pin_without_edge_detection_is_a_plain_read) {
    GpioPin pin({Bank, Pin});
    Board().DrivePin(Bank, Pin, true);
    const std::uint64_t polls = Board().CallCount("poll");
    EXPECT_EQ(pin.WaitForEdge(60000), HIGH_GPIO_LEVEL);
    pin.SetDirection(OUTPUT_GPIO_MODE);
    pin.Write(0);
    EXPECT_EQ(pin.WaitForEdge(60000), LOW_GPIO_LEVEL);
    EXPECT_EQ(Board().CallCount("poll"), polls);
}

TEST_F(Gpio, a_wait_without_an_edge_times_out_which_is_neither_low_nor_high) {
    const GpioPin pin = EdgeInput();
    Board().DrivePin(Bank, Pin, true);
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_EQ(pin.WaitForEdge(100), TIME_OUT_GPIO_LEVEL); }), Silence);
}

TEST_F(Gpio, a_wait_gives_the_level_after_the_edge) {
    const GpioPin pin = EdgeInput();
    EXPECT_EQ(WaitWhileDriven(pin, true), HIGH_GPIO_LEVEL);
    EXPECT_EQ(WaitWhileDriven(pin, false), LOW_GPIO_LEVEL);
}

TEST_F(Gpio, an_edge_from_before_the_wait_does_not_count) {
    const GpioPin pin = EdgeInput();
    Board().DrivePin(Bank, Pin, true);
    Board().DrivePin(Bank, Pin, false);
    EXPECT_EQ(pin.WaitForEdge(100), TIME_OUT_GPIO_LEVEL);
}

TEST_F(Gpio, a_wait_whose_value_file_does_not_open_is_an_error_without_a_text) {
    const GpioPin pin = EdgeInput();
    FailCall("open", 2, EACCES);
    EXPECT_EQ(PrintedBy([&pin] { EXPECT_EQ(pin.WaitForEdge(60000), ERROR_GPIO_LEVEL); }), Silence);
}

TEST_F(Gpio, a_failed_poll_counts_as_a_time_out) {
    const GpioPin pin = EdgeInput();
    FailCall("poll", 1, EINTR);
    EXPECT_EQ(pin.WaitForEdge(60000), TIME_OUT_GPIO_LEVEL);
}

TEST_F(Gpio, a_level_that_cannot_be_read_after_the_edge_is_an_error) {
    const GpioPin pin = EdgeInput();
    FailCall("read", 2, EIO);
    EXPECT_EQ(WaitWhileDriven(pin, true), ERROR_GPIO_LEVEL);
}

TEST_F(Gpio, a_wait_leaves_no_file_open_whichever_way_it_ends) {
    const GpioPin pin = EdgeInput();
    const std::size_t files = OpenFiles();
    pin.WaitForEdge(10);
    EXPECT_EQ(OpenFiles(), files) << "after a time-out";
    WaitWhileDriven(pin, true);
    EXPECT_EQ(OpenFiles(), files) << "after an edge";
    FailCall("read", 2, EIO);
    WaitWhileDriven(pin, false);
    EXPECT_EQ(OpenFiles(), files) << "after a failed read";
}
