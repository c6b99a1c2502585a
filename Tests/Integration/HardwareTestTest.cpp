// The hardware tests in the whole system: requested by message, seen in the log, in the requests to the remote
// indicator and in the verdict.
#include <gtest/gtest.h>

#include <filesystem>

#include "Tests/Support/RawPeer.h"
#include "Tests/Support/SoundClip.h"
#include "Tests/Support/SystemFixture.h"
#include "Tests/System/DeviceMonitor/Witness.h"

namespace {

constexpr const char* Amber = "colors 2 0 select 1 from SystemControl";
constexpr const char* Passed = "test 0 verdict 1 as 1 from DeviceMonitor";
constexpr const char* Failed = "test 0 verdict 0 as 1 from DeviceMonitor";
constexpr const char* AlertClip = "alert.wav";
constexpr double Fast = 100.0;
constexpr double WhilePlaying = 20.0;
constexpr const char* MotorFailed = "Reagent delivery stepper motor test failed";

class HardwareTestOfSystem : public SystemOnBoard {
protected:
    HardwareTestOfSystem() : SystemOnBoard(Fast) {
        EXPECT_TRUE(Board().MapPort(3111, frontEnd.Port()));
        Start();
        WaitForIdle();
    }

    // The witness reads the sender of a message, so it ends before the senders; its object outlives the router.
    ~HardwareTestOfSystem() override {
        if (witness != nullptr) {
            witness->Kill();
            EXPECT_EQ(pthread_join(witness->GetThreadId(), nullptr), 0);
        }
        Reset();
    }

    void Listen() {
        if (witness != nullptr) {
            witness->Forget();
            return;
        }
        witness =
            std::make_unique<Witness>("Witness", std::vector<DataMessageType>{REMOTE_INDICATOR_SET_COLORS_DATA_MESSAGE,
                                                                              PERIODIC_HARDWARE_TEST_DATA_MESSAGE});
        ASSERT_TRUE(witness->CreateThread());
        EXPECT_TRUE(Board().WaitUntil([this] { return witness->Listens(); }));
    }

    static void Request(std::int32_t selector) {
        auto message = std::make_unique<PeriodicHardwareTestMessage>();
        message->SetTestSelector(selector);
        EXPECT_TRUE(MessageController::SendMessage(std::move(message), SYSTEM_CONTROL));
    }

    // The request for amber, if there is one, and the verdict.
    Texts Test(std::int32_t selector) {
        Listen();
        Board().ClearLog();
        Request(selector);
        EXPECT_TRUE(Board().WaitUntil([this] {
            if (Board().PlayingClip() == AlertClip) {
                Board().SetSpeed(WhilePlaying);
            }
            const Texts heard = witness->Heard();  // the indicator's acknowledgement may come before or after
            return std::any_of(heard.begin(), heard.end(),
                               [](const std::string& text) { return text == Passed || text == Failed; });
        }));
        Texts answers;
        for (const std::string& text : witness->Heard()) {
            if (text == Amber || text == Passed || text == Failed) {
                answers.push_back(text);
            }
        }
        return answers;
    }

    // The lines change one after the other.
    void ExpectAmberLight() const {
        EXPECT_TRUE(Board().WaitUntil([this] {
            return Board().IndicatorLit(Bench::IndicatorLed::AmberAnalyzer) &&
                   !Board().IndicatorLit(Bench::IndicatorLed::BlueAnalyzer);
        }));
    }

    // Errors in the log since the test was requested.
    Texts Errors() {
        MessageController::LogMessage("end of the test", EMERGENCY_LOG_LEVEL, SYSTEM_CONTROL);
        WaitFor("end of the test");
        Texts errors;
        for (const Bench::LogLine& line : Board().Log()) {
            if (line.priority == ERROR_LOG_LEVEL) {
                errors.push_back(line.text.substr(line.text.find(" :: ") + 4));
            }
        }
        return errors;
    }

    RawListener frontEnd;
    std::unique_ptr<Witness> witness;
};

// The sound is measured two seconds after its request: time passes slowly until it plays, so that a busy machine is in
// time.
class SoundTestOfSystem : public HardwareTestOfSystem {
protected:
    SoundTestOfSystem() {
        LaySoundClip(Folder(), AlertClip, 60);  // outlasts a late measure
        Board().SetSpeed(1.0);
    }

    bool HasPlayedAlert() const {
        const std::vector<std::string> calls = Board().SoundCalls();
        return std::find(calls.begin(), calls.end(), "aplay -q /usr/share/vorn/bin/alert.wav") != calls.end();
    }
};

struct RailFault {
    const char* fault;
    const char* line;
};

constexpr RailFault RailFaults[] = {
    {"rail-out=9", "3.3V is outside of limits!"},
    {"rail-out=10", "1.8V is outside of limits!"},
    {"rail-out=12", "1.0V is outside of limits!"},
    {"rail-out=11", "Core 1.0V is outside of limits!"},
};

class RailTestOfSystem : public HardwareTestOfSystem, public testing::WithParamInterface<int> {};

}  // namespace

TEST_F(SoundTestOfSystem, a_sound_board_passes_them_all) {
    EXPECT_EQ(Test(5), Texts{Passed});
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(HardwareTestOfSystem, a_sound_board_passes_the_voltages) {
    EXPECT_EQ(Test(1), Texts{Passed});
    EXPECT_EQ(Errors(), Texts{});
}

TEST_P(RailTestOfSystem, fails_with_its_line_and_amber) {
    const RailFault& rail = RailFaults[GetParam()];
    SetFault(rail.fault);
    EXPECT_EQ(Test(1), (Texts{Amber, Failed}));
    EXPECT_EQ(Errors(), Texts{rail.line});
    ExpectAmberLight();
}

INSTANTIATE_TEST_SUITE_P(EachRail, RailTestOfSystem, testing::Range(0, 4),
                         [](const auto& each) { return std::string("row") + std::to_string(each.param); });

TEST_F(SoundTestOfSystem, a_sound_amplifier_passes) {
    EXPECT_EQ(Test(2), Texts{Passed});
    EXPECT_EQ(Errors(), Texts{});
    EXPECT_TRUE(HasPlayedAlert());
    EXPECT_FALSE(Board().IndicatorLit(Bench::IndicatorLed::AmberAnalyzer));
}

TEST_F(SoundTestOfSystem, a_dead_amplifier_fails_with_its_line_and_amber) {
    SetFault("amplifier-dead");
    EXPECT_EQ(Test(2), (Texts{Amber, Failed}));
    EXPECT_EQ(Errors(), Texts{"Audio amp test failed"});
    EXPECT_TRUE(HasPlayedAlert());
    ExpectAmberLight();
}

TEST_F(HardwareTestOfSystem, a_sound_pump_stage_passes) {
    EXPECT_EQ(Test(3), Texts{Passed});
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(HardwareTestOfSystem, a_dead_pump_stage_fails_with_its_line_and_amber) {
    SetFault("pump-stage-dead");
    EXPECT_EQ(Test(3), (Texts{Amber, Failed}));
    EXPECT_EQ(Errors(), Texts{MotorFailed});
    ExpectAmberLight();
}

TEST_F(HardwareTestOfSystem, a_sound_stir_stage_passes) {
    EXPECT_EQ(Test(4), Texts{Passed});
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(HardwareTestOfSystem, a_dead_stir_stage_fails_with_the_line_of_the_pump_and_amber) {
    SetFault("stir-stage-dead");
    EXPECT_EQ(Test(4), (Texts{Amber, Failed}));
    EXPECT_EQ(Errors(), Texts{MotorFailed});
    ExpectAmberLight();
}

TEST_F(HardwareTestOfSystem, all_of_them_end_at_the_first_fault) {
    SetFault("rail-out=10");
    SetFault("pump-stage-dead");
    EXPECT_EQ(Test(5), (Texts{Amber, Failed}));
    EXPECT_EQ(Errors(), Texts{"1.8V is outside of limits!"});
}

TEST_F(HardwareTestOfSystem, an_unknown_one_fails_without_a_line) {
    for (const std::int32_t selector : {0, 6}) {
        EXPECT_EQ(Test(selector), Texts{Failed});
        EXPECT_EQ(Errors(), Texts{});
    }
}

// The threads are joined, so the reset waits for the sleeps of the test.
TEST_F(HardwareTestOfSystem, a_reset_while_one_sleeps_leaks_nothing) {
    const auto entriesOf = [](const char* folder) {
        const std::filesystem::directory_iterator entries(folder);
        return std::distance(begin(entries), end(entries));
    };
    Reset();
    const auto threads = entriesOf("/proc/self/task");
    const auto descriptors = entriesOf("/proc/self/fd");
    for (const std::int32_t selector : {2, 3, 4}) {
        Board().ClearLog();
        Start();
        WaitForIdle();
        Request(selector);
        const std::string asked = "Data Message (REMOTE_INDICATOR_AUDIO_CONTROL_DATA_MESSAGE) : From - DeviceMonitor";
        EXPECT_TRUE(Board().WaitUntil([&] {
            const std::vector<std::string> lines = Lines();
            return std::any_of(lines.begin(), lines.end(),
                               [&](const std::string& line) { return line.rfind(asked, 0) == 0; });
        }));
        Reset();
        // A joined thread may be listed a moment longer.
        EXPECT_TRUE(Board().WaitUntil([&] { return entriesOf("/proc/self/task") <= threads; }));
        EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
        EXPECT_FALSE(Board().Pwm(1).enabled);
        EXPECT_FALSE(Board().Pwm(2).enabled);
    }
    Start();
    WaitForIdle();
}
