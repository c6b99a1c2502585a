#include "System/MeasurementEngine/MeasurementEngine.h"

#include "Tests/Support/FailingAllocation.h"
#include "Tests/System/MeasurementEngine/MeasurementFixture.h"
#include "Tests/System/MeasurementEngine/TestSettings.h"

namespace {

const std::string NotStarted = "MeasurementEngine::ProcessCommandMessage  Unable to start measurement control";

// The real controller on the real router, with all of the trace in the log.
class Engine : public MeasurementFixture {
protected:
    Engine() : MeasurementFixture("Listener") {
        MessageController::SetLogLevel(DEBUG_LOG_LEVEL);
        engine = std::make_unique<MeasurementEngine>();
        router->RegisterCommand(engine.get(), MOVE_TO_IDLE);
        WaitForLog("Changing to INITIALIZING_STATE State for - MeasurementEngine");
        // Registering takes place before the first wait, so what answers a command has been through it.
        settings.Step("VerifyFlow")["Stirring On"] = "true";
        settings.Step("VerifyFlow")["Duration"] = "20000";
    }

    ~Engine() override {
        EndEngine();
        RemoveSettings();
    }

    void EndEngine() {
        if (engine != nullptr) {
            engine->Kill();
            pthread_join(engine->GetThreadId(), nullptr);
            router->RegisterCommand(&standIn, MOVE_TO_RUNNING);
            engine.reset();
        }
    }

    void Tell(CommandType command) {
        auto message = std::make_unique<CommandMessage>(command);
        message->SetSource(&listener);
        message->SetDestination(engine.get());
        MessageBase::Send(std::move(message));
    }

    void TellAndWait(CommandType command, const char* state) {
        Tell(command);
        WaitForLog(std::string("Changing to ") + state + " State for - MeasurementEngine", ++m_changes[state]);
    }

    void GoRunning() { TellAndWait(MOVE_TO_RUNNING, "RUNNING_STATE"); }

    void StartCycle() {
        ASSERT_TRUE(settings.Install(Folder()));
        GoRunning();
        Tell(COLLECT_MEASUREMENT);
        WaitForStatus("Executing Sample Flush & Delivery Verify Flow Step");
    }

    Texts Responses() {
        Settle();
        Texts texts;
        for (const auto& message : listener.Copies<GUIResponseMessage>(GUI_RESPONSE_DATA_MESSAGE)) {
            texts.push_back(std::to_string(message.GetStatus()) + " " + message.GetText().Text());
        }
        return texts;
    }

    // Of the level of errors and more severe.
    Texts Errors() {
        Settle();
        Texts lines;
        for (const auto& message : listener.Copies<LogInfoMessage>(LOGGING_DATA_MESSAGE)) {
            if (message.GetLogInfo().GetLogLevel() == ERROR_LOG_LEVEL) {
                lines.push_back(message.GetLogInfo().GetText().Text());
            }
        }
        return lines;
    }

    bool Process(CommandType command) {
        CommandMessage message(command);
        return engine->ProcessCommandMessage(&message);
    }

    // The lines since, without the trace of messages.
    Texts LinesBehind(std::size_t count) {
        Texts lines;
        const Texts all = LogLines();
        for (std::size_t line = count; line < all.size(); ++line) {
            if (all[line].find(" Message (") == std::string::npos) {
                lines.push_back(all[line]);
            }
        }
        return lines;
    }

    TestSettings settings;
    std::unique_ptr<MeasurementEngine> engine;
    Listener standIn{"MeasurementEngine"};  // takes the engine's name when that has gone

private:
    std::map<std::string, std::size_t> m_changes;
};

}  // namespace

TEST_F(Engine, tells_that_it_initializes) {
    WaitForLog("Initializing Thread for - MeasurementEngine");
    EXPECT_EQ(engine->GetThreadName(), "MeasurementEngine");
    EXPECT_EQ(engine->GetTimeOut(), -1);
}

TEST_F(Engine, subscribes_to_no_data) {
    auto request = std::make_unique<AdcStatusMessage>();
    MessageController::SendMessage(std::move(request), MEASUREMENT_ENGINE);
    TellAndWait(MOVE_TO_TEST, "TEST_STATE");
    Settle();
    EXPECT_EQ(listener.Copies<AdcStatusMessage>(ADC_STATUS_MESSAGE).size(), 1U);  // the request itself
}

TEST_F(Engine, entering_running_answers_the_front_end_once) {
    GoRunning();
    Tell(MOVE_TO_RUNNING);
    TellAndWait(MOVE_TO_TEST, "TEST_STATE");
    EXPECT_EQ(Responses(), Texts{"-2 Entered RUNNING STATE"});
}

TEST_F(Engine, leaving_running_between_cycles_takes_ten_seconds) {
    GoRunning();
    const double began = Board().Seconds();
    Tell(MOVE_TO_IDLE);
    WaitForMessages(GUI_RESPONSE_DATA_MESSAGE, 2);
    EXPECT_THAT(Board().Seconds() - began, IsWaitOf(10.0));
    EXPECT_EQ(Responses(), (Texts{"-2 Entered RUNNING STATE", "-1 Entered IDLE STATE"}));
    WaitForLog("Changing to IDLE_STATE State for - MeasurementEngine");
}

TEST_F(Engine, entering_idle_for_the_first_time_takes_no_wait) {
    const double began = Board().Seconds();
    TellAndWait(MOVE_TO_IDLE, "IDLE_STATE");
    EXPECT_THAT(Board().Seconds() - began, IsWaitOf(0.0));
    EXPECT_EQ(Responses(), Texts{"-1 Entered IDLE STATE"});
}

TEST_F(Engine, idle_in_idle_does_nothing_at_all) {
    TellAndWait(MOVE_TO_IDLE, "IDLE_STATE");
    const std::size_t lines = LogLines().size();
    EXPECT_TRUE(Process(MOVE_TO_IDLE));
    EXPECT_EQ(Responses().size(), 1U);
    EXPECT_EQ(LinesBehind(lines), Texts{});
}

TEST_F(Engine, idle_during_a_cycle_aborts_it_and_waits_for_its_step) {
    StartCycle();
    TellAndWait(MOVE_TO_IDLE, "IDLE_STATE");
    EXPECT_EQ(StatusTexts().back(), "Aborted Measurement Cycle");
    EXPECT_THAT(Between("/sys/class/pwm/pwmchip0/pwm2/enable=1", "/sys/class/pwm/pwmchip0/pwm2/enable=0"),
                IsWaitOf(20.0));
    EXPECT_TRUE(Results().empty());
}

TEST_F(Engine, shutdown_aborts_a_cycle) {
    StartCycle();
    TellAndWait(MOVE_TO_SHUTDOWN, "SHUTDOWN_STATE");
    EXPECT_EQ(StatusTexts().back(), "Aborted Measurement Cycle");
}

TEST_F(Engine, test_state_lets_a_cycle_go_on_to_its_end) {
    StartCycle();
    TellAndWait(MOVE_TO_TEST, "TEST_STATE");
    WaitForMessages(MEASUREMENT_DATA_MESSAGE, 1);
    EXPECT_EQ(Results().size(), 1U);
}

TEST_F(Engine, kill_aborts_a_cycle) {
    StartCycle();
    EndEngine();
    WaitForStatus("Aborted Measurement Cycle");
    WaitForLog("Killing Thread for - MeasurementEngine");
}

TEST_F(Engine, a_measurement_is_dropped_without_a_line_in_idle_and_in_test) {
    ASSERT_TRUE(settings.Install(Folder()));
    for (const auto& [command, state] :
         {std::pair{MOVE_TO_IDLE, "IDLE_STATE"}, std::pair{MOVE_TO_TEST, "TEST_STATE"}}) {
        TellAndWait(command, state);
        const std::size_t lines = LogLines().size();
        EXPECT_TRUE(Process(COLLECT_MEASUREMENT));
        EXPECT_EQ(LinesBehind(lines), Texts{});
    }
    EXPECT_EQ(StatusTexts(), Texts{});
}

TEST_F(Engine, a_measurement_asked_for_during_a_cycle_is_tried_each_second_and_starts_the_next) {
    StartCycle();
    Tell(COLLECT_MEASUREMENT);
    WaitForLog(NotStarted, 2);
    WaitForMessages(MEASUREMENT_DATA_MESSAGE, 2);
    const std::vector<MeasurementResults> results = Results();
    EXPECT_EQ(results[1].GetMeasurementIndex(), 2U);
    const Texts errors = Errors();
    EXPECT_EQ(errors, Texts(errors.size(), NotStarted));
}

TEST_F(Engine, a_refused_measurement_takes_a_second) {
    StartCycle();
    const double began = Board().Seconds();
    EXPECT_TRUE(Process(COLLECT_MEASUREMENT));
    EXPECT_THAT(Board().Seconds() - began, IsWaitOf(1.0));
}

TEST_F(Engine, the_retry_ends_with_the_state) {
    StartCycle();
    Tell(COLLECT_MEASUREMENT);
    WaitForLog(NotStarted);
    TellAndWait(MOVE_TO_TEST, "TEST_STATE");
    WaitForMessages(MEASUREMENT_DATA_MESSAGE, 1);
    TellAndWait(MOVE_TO_SHUTDOWN, "SHUTDOWN_STATE");
    EndEngine();
    EXPECT_EQ(Results().size(), 1U);
}

TEST_F(Engine, primes_in_running_on_its_own_thread) {
    ASSERT_TRUE(settings.Install(Folder()));
    GoRunning();
    Tell(PRIME_SYSTEM);
    TellAndWait(MOVE_TO_TEST, "TEST_STATE");  // handled when the priming is through
    EXPECT_EQ(TraceOf("gpio/unexport=50").size(), 1U);
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(Engine, a_priming_that_fails_is_told) {
    GoRunning();
    EXPECT_TRUE(Process(PRIME_SYSTEM));
    EXPECT_EQ(Errors(), Texts{"MeasurementEngine::ProcessCommandMessage  Unable to perform priming operations"});
    EXPECT_EQ(engine->GetState(), RUNNING_STATE);
}

TEST_F(Engine, a_priming_outside_of_running_is_dropped) {
    ASSERT_TRUE(settings.Install(Folder()));
    TellAndWait(MOVE_TO_TEST, "TEST_STATE");
    EXPECT_TRUE(Process(PRIME_SYSTEM));
    EXPECT_EQ(Board().Trace(), Texts{});
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(Engine, reset_and_killing_are_not_for_it) {
    TellAndWait(MOVE_TO_TEST, "TEST_STATE");
    EXPECT_TRUE(Process(RESET_SYSTEM));
    EXPECT_TRUE(Process(KILLING_SYSTEM));
    EXPECT_EQ(engine->GetState(), TEST_STATE);
}

TEST_F(Engine, an_answer_without_memory_is_skipped_and_the_state_changes) {
    const FailingAllocation failing(1);
    EXPECT_TRUE(Process(MOVE_TO_RUNNING));
    EXPECT_EQ(engine->GetState(), RUNNING_STATE);
    EXPECT_EQ(Responses(), Texts{});
    EXPECT_EQ(Errors(), Texts{});
}

TEST_F(Engine, an_analog_request_is_answered) {
    AdcStatusMessage request;
    request.GetAdcStatusInfo().SetSignalId(10084);
    request.GetAdcStatusInfo().SetSampleCount(3);
    EXPECT_TRUE(engine->ProcessDataMessage(&request));
    WaitForMessages(ADC_STATUS_MESSAGE, 1);
    EXPECT_EQ(listener.Copies<AdcStatusMessage>(ADC_STATUS_MESSAGE)[0].GetSubType(), 1);
}

TEST_F(Engine, an_analog_answer_is_no_request_and_is_told) {
    AdcStatusMessage answer;
    answer.SetSubType(1);
    EXPECT_TRUE(engine->ProcessDataMessage(&answer));
    WaitForLog("ERROR: LIFTAnalogInput - MeasurementEngine");
    Settle();
    EXPECT_TRUE(listener.Copies<AdcStatusMessage>(ADC_STATUS_MESSAGE).empty());
}

TEST_F(Engine, pin_and_pwm_requests_are_answered) {
    TestDigitalInputPinsMessage input;
    TestDigitalOutputPinsMessage output;
    TestPWMMessage pwm;
    pwm.SetId(3 * 9);  // no such channel
    for (DataMessage* request :
         {static_cast<DataMessage*>(&input), static_cast<DataMessage*>(&output), static_cast<DataMessage*>(&pwm)}) {
        EXPECT_TRUE(engine->ProcessDataMessage(request));
    }
    Settle();
    EXPECT_EQ(listener.Copies<TestDigitalInputPinsMessage>(TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE).size(), 1U);
    EXPECT_EQ(listener.Copies<TestDigitalOutputPinsMessage>(TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE).size(), 1U);
    EXPECT_EQ(listener.Copies<TestPWMMessage>(TEST_PWM_DATA_MESSAGE).size(), 1U);
}

TEST_F(Engine, pin_and_pwm_answers_are_no_requests) {
    TestDigitalInputPinsMessage input;
    TestDigitalOutputPinsMessage output;
    TestPWMMessage pwm;
    MeasurementMessage other;
    for (DataMessage* message : {static_cast<DataMessage*>(&input), static_cast<DataMessage*>(&output),
                                 static_cast<DataMessage*>(&pwm), static_cast<DataMessage*>(&other)}) {
        message->SetSubType(message == &other ? 0 : 1);
        EXPECT_TRUE(engine->ProcessDataMessage(message));
    }
    Settle();
    EXPECT_TRUE(listener.Copies<TestDigitalInputPinsMessage>(TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE).empty());
    EXPECT_TRUE(listener.Copies<TestDigitalOutputPinsMessage>(TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE).empty());
    EXPECT_TRUE(listener.Copies<TestPWMMessage>(TEST_PWM_DATA_MESSAGE).empty());
    EXPECT_EQ(Board().Trace(), Texts{});
}
