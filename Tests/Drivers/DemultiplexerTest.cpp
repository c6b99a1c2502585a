#include "Drivers/Demultiplexer.h"

#include <cerrno>
#include <memory>

#include "Tests/Drivers/DriverTest.h"

namespace {

constexpr DemultiplexerLines Lines{{{2, 27}, {2, 28}, {2, 31}, {3, 10}}};

class Mux : public DriverTest {
protected:
    static void MakeReady(Demultiplexer& mux) {
        EXPECT_TRUE(mux.Init(Lines));
        TakeTrace();
    }

    static Texts Selected(const char* a, const char* b, const char* c, const char* enable) {
        return {std::string("/sys/class/gpio/pioC27/value=") + a, std::string("/sys/class/gpio/pioC28/value=") + b,
                std::string("/sys/class/gpio/pioC31/value=") + c,
                std::string("/sys/class/gpio/pioD10/value=") + enable};
    }

    static LogCall Logged(const char* text) { return {text, ERROR_LOG_LEVEL, REMOTE_INDICATOR_CONTROL}; }

    const LogCall InitFailed = Logged("Demultiplexer::Init - Configuring demultiplexer driver GPIO failed!");
    const LogCall InvalidChannel = Logged("Demultiplexer::SelectChannel - Invalid channel!");
    const LogCall SelectFailed = Logged("Demultiplexer::SelectChannel - Setting mux channel failed!");
    const LogCall ReadFailed{"Demultiplexer::ReadVoltage failed!", ERROR_LOG_LEVEL, DEVICE_MONITOR};
};

using Log = std::vector<LogCall>;

}  // namespace

TEST_F(Mux, the_lines_are_claimed_first_and_then_made_outputs_that_are_low) {
    Demultiplexer mux;
    EXPECT_EQ(PrintedBy([&mux] { EXPECT_TRUE(mux.Init(Lines)); }), Silence);
    EXPECT_EQ(TakeTrace(), (Texts{"/sys/class/gpio/export=91",
                                  "/sys/class/gpio/pioC27/direction=in",
                                  "/sys/class/gpio/pioC27/edge=none",
                                  "/sys/class/gpio/export=92",
                                  "/sys/class/gpio/pioC28/direction=in",
                                  "/sys/class/gpio/pioC28/edge=none",
                                  "/sys/class/gpio/export=95",
                                  "/sys/class/gpio/pioC31/direction=in",
                                  "/sys/class/gpio/pioC31/edge=none",
                                  "/sys/class/gpio/export=106",
                                  "/sys/class/gpio/pioD10/direction=in",
                                  "/sys/class/gpio/pioD10/edge=none",
                                  "/sys/class/gpio/pioC27/direction=out",
                                  "/sys/class/gpio/pioC27/edge=none",
                                  "/sys/class/gpio/pioC27/value=0",
                                  "/sys/class/gpio/pioC28/direction=out",
                                  "/sys/class/gpio/pioC28/edge=none",
                                  "/sys/class/gpio/pioC28/value=0",
                                  "/sys/class/gpio/pioC31/direction=out",
                                  "/sys/class/gpio/pioC31/edge=none",
                                  "/sys/class/gpio/pioC31/value=0",
                                  "/sys/class/gpio/pioD10/direction=out",
                                  "/sys/class/gpio/pioD10/edge=none",
                                  "/sys/class/gpio/pioD10/value=0"}));
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Mux, the_end_releases_the_lines) {
    {
        Demultiplexer mux;
        MakeReady(mux);
    }
    for (const PinAddress& line : Lines) {
        EXPECT_FALSE(Board().Pin(static_cast<int>(line.bank), static_cast<int>(line.pin)).claimed);
    }
    EXPECT_EQ(TakeTrace().size(), 4U);
}

TEST_F(Mux, a_line_that_cannot_be_set_up_ends_the_setting_up_and_is_logged) {
    SetFault("write-refused=pioC28/value");
    Demultiplexer mux;
    EXPECT_EQ(PrintedBy([&mux] { EXPECT_FALSE(mux.Init(Lines)); }), OnError("unable to set the gpio value"));
    EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    EXPECT_EQ(TakeTrace().back(), "/sys/class/gpio/pioC28/value=0 !EIO");
    EXPECT_FALSE(mux.SelectChannel(0));
}

TEST_F(Mux, without_the_pin_files_setting_up_fails) {
    SetFault("gpio-missing");
    PrintedBy([this] {
        Demultiplexer mux;
        EXPECT_FALSE(mux.Init(Lines));
        EXPECT_EQ(TakeLog(), (Log{InitFailed}));
    });
}

TEST_F(Mux, lines_that_another_test_holds_are_shared) {
    Demultiplexer first;
    MakeReady(first);
    PrintedBy([&first] {
        Demultiplexer second;
        EXPECT_TRUE(second.Init(Lines));
        EXPECT_TRUE(second.SelectChannel(3));
        EXPECT_TRUE(first.SelectChannel(4));
    });
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Mux, the_test_that_ends_first_takes_shared_lines_away) {
    auto first = std::make_unique<Demultiplexer>();
    MakeReady(*first);
    PrintedBy([] {
        Demultiplexer second;
        second.Init(Lines);
    });
    EXPECT_EQ(PrintedBy([&first] { EXPECT_FALSE(first->SelectChannel(4)); }), OnError("not locked yet\n"));
    EXPECT_EQ(TakeLog(), (Log{SelectFailed}));
    EXPECT_EQ(PrintedBy([&first] { first.reset(); }),
              OnError("not used yet\nnot used yet\nnot used yet\nnot used yet\n"));
}

TEST_F(Mux, each_channel_has_its_address_and_its_multiplexer) {
    const struct {
        std::uint32_t channel;
        Texts lines;
    } rows[] = {
        {0, Selected("0", "0", "0", "1")},  {1, Selected("1", "0", "0", "1")},  {2, Selected("0", "1", "0", "1")},
        {3, Selected("1", "1", "0", "1")},  {4, Selected("0", "0", "1", "1")},  {5, Selected("1", "0", "1", "1")},
        {6, Selected("0", "1", "1", "1")},  {7, Selected("1", "1", "1", "1")},  {8, Selected("0", "0", "0", "0")},
        {9, Selected("1", "0", "0", "0")},  {10, Selected("0", "1", "0", "0")}, {11, Selected("1", "1", "0", "0")},
        {12, Selected("0", "0", "1", "0")}, {13, Selected("1", "0", "1", "0")}, {14, Selected("0", "1", "1", "0")},
        {15, Selected("1", "1", "1", "0")},
    };
    Demultiplexer mux;
    MakeReady(mux);
    for (const auto& row : rows) {
        EXPECT_TRUE(mux.SelectChannel(row.channel));
        EXPECT_EQ(TakeTrace(), row.lines) << row.channel;
    }
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Mux, a_channel_above_15_is_logged_and_goes_on_with_all_lines_low) {
    Demultiplexer mux;
    MakeReady(mux);
    for (const std::uint32_t channel : {16U, 0xFFFFFFFFU}) {
        EXPECT_TRUE(mux.SelectChannel(channel));
        EXPECT_EQ(TakeTrace(), Selected("0", "0", "0", "0"));
        EXPECT_EQ(TakeLog(), (Log{InvalidChannel}));
    }
}

TEST_F(Mux, before_init_no_channel_is_selected) {
    Demultiplexer mux;
    EXPECT_EQ(PrintedBy([&mux] { EXPECT_FALSE(mux.SelectChannel(0)); }), Silence);
    EXPECT_EQ(TakeLog(), (Log{SelectFailed}));
    EXPECT_FALSE(mux.SelectChannel(16));
    EXPECT_EQ(TakeLog(), (Log{InvalidChannel, SelectFailed}));
    EXPECT_EQ(TakeTrace(), Texts{});
}

TEST_F(Mux, any_line_that_cannot_be_written_fails_the_selection) {
    Demultiplexer mux;
    MakeReady(mux);
    for (const char* line : {"pioC27", "pioC28", "pioC31", "pioD10"}) {
        SetFault(std::string("write-refused=") + line);
        EXPECT_EQ(PrintedBy([&mux] { EXPECT_FALSE(mux.SelectChannel(0)); }), OnError("unable to set the gpio value"));
        EXPECT_EQ(TakeLog(), (Log{SelectFailed})) << line;
        ClearFault("write-refused");
    }
}

TEST_F(Mux, the_voltage_of_a_channel_comes_from_input_6) {
    Demultiplexer mux;
    MakeReady(mux);
    Board().SetIioScale("3.0");
    Board().SetMultiplexerRaw(9, 512);
    Board().SetMultiplexerRaw(1, 256);
    float voltage = 0.0F;
    EXPECT_TRUE(mux.ReadVoltage(9, voltage));
    EXPECT_EQ(voltage, 1.5F);
    EXPECT_TRUE(mux.ReadVoltage(1, voltage));
    EXPECT_EQ(voltage, 0.75F);
    EXPECT_EQ(TakeLog(), Log{});
}

TEST_F(Mux, a_missing_converter_fails_before_a_channel_is_selected) {
    Demultiplexer mux;
    MakeReady(mux);
    SetFault("iio-missing");
    float voltage = 7.0F;
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(mux.ReadVoltage(9, voltage)); }), OnError("ADC: device does not exist"));
    EXPECT_EQ(TakeLog(), (Log{ReadFailed}));
    EXPECT_EQ(TakeTrace(), Texts{});
    EXPECT_EQ(voltage, 7.0F);
}

TEST_F(Mux, a_channel_that_cannot_be_selected_is_not_read) {
    Demultiplexer mux;
    float voltage = 7.0F;
    EXPECT_FALSE(mux.ReadVoltage(9, voltage));
    EXPECT_EQ(TakeLog(), (Log{SelectFailed, ReadFailed}));
    EXPECT_EQ(voltage, 7.0F);
}

TEST_F(Mux, a_voltage_that_cannot_be_read_is_logged) {
    Demultiplexer mux;
    MakeReady(mux);
    Board().SetIioScale("volt");
    float voltage = 7.0F;
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(mux.ReadVoltage(9, voltage)); }), OnError("ADC: can't read the reference"));
    EXPECT_EQ(TakeLog(), (Log{ReadFailed}));
}

TEST_F(Mux, all_voltages_are_read_in_order) {
    Demultiplexer mux;
    MakeReady(mux);
    Board().SetIioScale("1.0");
    std::list<float> expected;
    for (int channel = 0; channel < 16; ++channel) {
        Board().SetMultiplexerRaw(channel, 64 * channel);
        expected.push_back(static_cast<float>(channel) / 16.0F);
    }
    std::list<float> voltages{7.0F};
    EXPECT_TRUE(mux.ReadAllVoltages(voltages));
    EXPECT_EQ(voltages, expected);
}

TEST_F(Mux, the_first_failure_ends_the_walk_and_keeps_what_was_read) {
    Demultiplexer mux;
    MakeReady(mux);
    Board().SetIioScale("1.0");
    Board().SetMultiplexerRaw(0, 512);
    Board().SetMultiplexerRaw(1, 256);
    const std::uint64_t before = Board().CallCount("open");
    float voltage = 0.0F;
    mux.ReadVoltage(0, voltage);
    const auto opensOfOneRead = static_cast<int>(Board().CallCount("open") - before);
    TakeTrace();
    FailCall("open", 2 * opensOfOneRead + 1, EACCES);
    std::list<float> voltages{7.0F};
    EXPECT_EQ(PrintedBy([&] { EXPECT_FALSE(mux.ReadAllVoltages(voltages)); }), OnError("ADC: device does not exist"));
    EXPECT_EQ(voltages, (std::list<float>{0.5F, 0.25F}));
    EXPECT_EQ(TakeLog(), (Log{ReadFailed}));
    EXPECT_EQ(TakeTrace().size(), 8U);
}

TEST_F(Mux, a_walk_can_be_repeated) {
    Demultiplexer mux;
    MakeReady(mux);
    std::list<float> voltages;
    EXPECT_TRUE(mux.ReadAllVoltages(voltages));
    EXPECT_TRUE(mux.ReadAllVoltages(voltages));
    EXPECT_EQ(voltages.size(), 16U);
}
