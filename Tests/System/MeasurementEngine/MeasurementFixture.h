// A board without noise, a router on it, and a listener for all that the measurement sends, as the rest of the system
// would hear it.
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Frameworks/Messaging/MessagingControl.h"
#include "Frameworks/Utilities/Report.h"
#include "System/Messages/AdcStatusMessage.h"
#include "System/Messages/GUIResponseMessage.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/MeasurementStepDataMessage.h"
#include "System/Messages/TestDigitalInputPinsMessage.h"
#include "System/Messages/TestDigitalOutputPinsMessage.h"
#include "System/Messages/TestPWMMessage.h"
#include "Tests/Support/ExactTime.h"
#include "Tests/Support/TestRouter.h"

using Texts = std::vector<std::string>;

// Keeps a copy of every message of the types below, in order of arrival.
class Listener : public ThreadControl {
public:
    explicit Listener(const char* name) { SetThreadName(name); }

    bool DoRegistration() override {
        for (const DataMessageType type :
             {LOGGING_DATA_MESSAGE, MEASUREMENT_DATA_MESSAGE, MEASUREMENT_STEP_DATA_MESSAGE, MEASUREMENT_STATUS_MESSAGE,
              GUI_RESPONSE_DATA_MESSAGE, ADC_STATUS_MESSAGE, TEST_DIGITAL_INPUT_PINS_DATA_MESSAGE,
              TEST_DIGITAL_OUTPUT_PINS_DATA_MESSAGE, TEST_PWM_DATA_MESSAGE}) {
            RegisterForDataMessage(type);
        }
        return true;
    }
    bool Init() override {
        const bool result = ThreadControl::Init() && DoRegistration();
        const std::lock_guard lock(m_mutex);
        m_listens = true;
        m_changed.notify_all();
        return result;
    }
    bool ProcessDataMessage(DataMessage* message) override {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(message->Clone());
        m_changed.notify_all();
        return true;
    }

    void Listen() {
        CreateThread();
        Wait([this] { return m_listens; });
    }

    // A wait that cannot end ends the process.
    void Wait(const std::function<bool()>& condition) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, condition);
    }

    template <typename Message>
    std::vector<Message> Copies(DataMessageType type) {
        const std::lock_guard lock(m_mutex);
        std::vector<Message> copies;
        for (const auto& message : m_messages) {
            if (TypeOf(*message) == type) {
                copies.push_back(static_cast<const Message&>(*message));
            }
        }
        return copies;
    }

    std::size_t CountLocked(DataMessageType type) const {
        return static_cast<std::size_t>(std::count_if(
            m_messages.begin(), m_messages.end(), [type](const auto& message) { return TypeOf(*message) == type; }));
    }
    const std::vector<std::unique_ptr<MessageBase>>& MessagesLocked() const { return m_messages; }

    std::vector<StepResults> StepData() {
        const std::lock_guard lock(m_mutex);
        std::vector<StepResults> results;
        for (const auto& message : m_messages) {
            if (TypeOf(*message) == MEASUREMENT_STEP_DATA_MESSAGE) {
                results.push_back(*static_cast<const MeasurementStepDataMessage&>(*message).GetStepResults());
            }
        }
        return results;
    }

    static DataMessageType TypeOf(const MessageBase& message) {
        return static_cast<const DataMessage&>(message).GetDataType();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_listens = false;
    std::vector<std::unique_ptr<MessageBase>> m_messages;
};

class MeasurementFixture : public ExactBoardTest {
protected:
    // With errors only in the log.
    explicit MeasurementFixture(const char* listenerName = "MeasurementEngine") : listener(listenerName) {
        SetPumpAngle(200.0);                               // before both edges of the home flag
        SetReportFunction(MessageController::LogMessage);  // another test of this program may have taken it
        router.AddName(listener);
        listener.Listen();
    }

    ~MeasurementFixture() override {
        listener.Kill();
        pthread_join(listener.GetThreadId(), nullptr);
        router.End();
    }

    void SetPumpAngle(double angle) {
        Bench::InstrumentState state = Board().Instrument();
        state.pumpAngle = angle;
        Board().SetInstrument(state);
    }

    // When this returns, all that was sent before has been heard.
    void Settle() {
        const std::string mark = "settled " + std::to_string(++m_marks);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, MEASUREMENT_ENGINE);
        listener.Wait([&] {
            const auto& messages = listener.MessagesLocked();
            return std::any_of(messages.begin(), messages.end(), [&](const auto& message) {
                return Listener::TypeOf(*message) == LOGGING_DATA_MESSAGE && LogText(*message) == mark;
            });
        });
    }

    // Lines of the log but the marks of Settle.
    Texts LogLines() {
        Settle();
        Texts lines;
        for (const auto& message : listener.Copies<LogInfoMessage>(LOGGING_DATA_MESSAGE)) {
            if (message.GetLogInfo().GetLogLevel() != EMERGENCY_LOG_LEVEL) {
                lines.push_back(message.GetLogInfo().GetText().Text());
            }
        }
        return lines;
    }

    Texts StatusTexts() {
        Settle();
        Texts texts;
        for (const auto& message : listener.Copies<MeasurementStatusMessage>(MEASUREMENT_STATUS_MESSAGE)) {
            texts.push_back(message.GetStatusInfo().GetText().Text());
        }
        return texts;
    }

    std::vector<MeasurementResults> Results() {
        Settle();
        std::vector<MeasurementResults> results;
        for (const auto& message : listener.Copies<MeasurementMessage>(MEASUREMENT_DATA_MESSAGE)) {
            results.push_back(message.GetMeasurementResults());
        }
        return results;
    }

    void WaitForStatus(const std::string& text) {
        listener.Wait([&] {
            const auto& messages = listener.MessagesLocked();
            return std::any_of(messages.begin(), messages.end(), [&](const auto& message) {
                return Listener::TypeOf(*message) == MEASUREMENT_STATUS_MESSAGE &&
                       static_cast<const MeasurementStatusMessage&>(*message).GetStatusInfo().GetText() == text.c_str();
            });
        });
    }

    void WaitForLog(const std::string& text, std::size_t times = 1) {
        listener.Wait([&] {
            const auto& messages = listener.MessagesLocked();
            return static_cast<std::size_t>(std::count_if(messages.begin(), messages.end(), [&](const auto& message) {
                       return Listener::TypeOf(*message) == LOGGING_DATA_MESSAGE && LogText(*message) == text;
                   })) >= times;
        });
    }

    void WaitForMessages(DataMessageType type, std::size_t count) {
        listener.Wait([&] { return listener.CountLocked(type) >= count; });
    }

    // The board's trace, only the lines that hold the text.
    Texts TraceOf(const std::string& part) const {
        Texts lines;
        for (const std::string& line : Board().Trace()) {
            if (line.find(part) != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    // Seconds of the run from the one line to the other.
    double Between(const std::string& first, const std::string& second) const { return TimeOf(second) - TimeOf(first); }

    // Seconds of the run at which the line was traced first, or last.
    double TimeOf(const std::string& line, bool last = false) const {
        double seconds = -1.0;
        for (const Bench::TraceEntry& entry : Board().TraceWithTimes()) {
            if (entry.text == line) {
                seconds = entry.seconds;
                if (!last) {
                    break;
                }
            }
        }
        EXPECT_GE(seconds, 0.0) << line << " is not in the trace";
        return seconds;
    }

    TestRouter router{ERROR_LOG_LEVEL};
    Listener listener;

private:
    static std::string LogText(const MessageBase& message) {
        return static_cast<const LogInfoMessage&>(message).GetLogInfo().GetText().Text();
    }

    int m_marks = 0;
};
