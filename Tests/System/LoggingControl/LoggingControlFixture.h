// A LoggingControl on its own board, with a router and a sender that represents the rest of the system. The test starts
// at 2012-12-31 04:59:59 in Mountain Standard Time, which is UTC minus seven hours.
#pragma once

#include <pthread.h>
#include <syslog.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "System/LoggingControl/LoggingControl.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/Messages/MeasurementStepDataMessage.h"
#include "Tests/Support/ExactTime.h"
#include "Tests/Support/TestRouter.h"

using Texts = std::vector<std::string>;

class LoggingControlFixture : public ExactBoardTest {
protected:
    static constexpr time_t StartOfDay = 1356955199;  // 2012-12-31 11:59:59 UTC

    LoggingControlFixture() {
        setenv("TZ", "MST7", 1);
        tzset();
    }

    ~LoggingControlFixture() override {
        Stop();
        SingletonBase::SetSystemConfiguration(nullptr);
        MessageController::SetLogLevel(RUMOR_LOG_LEVEL);
        closelog();
    }

    LoggingControlFixture(const LoggingControlFixture&) = delete;
    LoggingControlFixture& operator=(const LoggingControlFixture&) = delete;

    // The settings of the test; all three kinds are logged as CSV unless it says otherwise.
    std::map<std::string, std::string> settings = {
        {"LoggingLevel", "ERROR_LOG_LEVEL"},
        {"LogMeasurementData", "true"},
        {"LogMeasurementDataFileFormat", "CSV"},
        {"LogMeasurementStepData", "true"},
        {"LogMeasurementStepDataFileFormat", "CSV"},
        {"LogStatusData", "true"},
        {"LogStatusDataFileFormat", "CSV"},
        {"LogDataFilePath", "/mnt/sd-card"},
        {"LogMeasurementDataFileName", "Measurement.csv"},
        {"LogMeasurementStepDataFileName", "Step.csv"},
        {"LogStatusDataFileName", "Status.csv"},
    };

    void LoadSettings() {
        const std::string path = Folder() + "/logging.conf.xml";
        std::ofstream file(path);
        file << "<ROOT_ANALYZER>\n<LOGGING_INFO>\n";
        for (const auto& [name, value] : settings) {
            file << "<INFO_ITEM name=\"" << name << "\" value=\"" << value << "\"/>\n";
        }
        file << "</LOGGING_INFO>\n</ROOT_ANALYZER>\n";
        file.close();
        auto configuration = std::make_unique<SystemConfigurationFile>();
        ASSERT_TRUE(configuration->Load(path));
        ASSERT_TRUE(SingletonBase::SetSystemConfiguration(std::move(configuration)));
        ASSERT_TRUE(SingletonBase::GetSystemConfiguration()->GetXML());
    }

    // A router alone, without settings.
    void StartRouter() {
        m_router = std::make_unique<TestRouter>();
        m_router->AddName(m_sender);
    }

    void Launch() {
        if (m_router == nullptr) {
            StartRouter();
        }
        m_logging = std::make_unique<LoggingControl>();
    }

    void Start() {
        LoadSettings();
        Launch();
        Sync();
        Board().ClearLog();
    }

    // Ends router and controller and deletes them, as a reset does.
    void Stop() {
        if (m_router != nullptr) {
            m_router->End();
        }
        if (m_logging != nullptr) {
            m_logging->Kill();
            pthread_join(m_logging->GetThreadId(), nullptr);
        }
        m_logging.reset();
        m_router.reset();
    }

    LoggingControl& Logging() { return *m_logging; }
    MessagingControl& Router() { return **m_router; }

    // Straight to the controller's queue.
    void Post(std::unique_ptr<MessageBase> message) {
        message->SetSource(&m_sender);
        message->SetDestination(m_logging.get());
        ASSERT_TRUE(MessageBase::Send(std::move(message)));
    }

    void PostLine(const StdString& text, LogLevel level) {
        LogInfo line;
        line.SetText(text);
        line.SetLogLevel(level);
        line.SetTime(At(StartOfDay, 5000000));
        auto message = std::make_unique<LogInfoMessage>();
        message->SetLogInfo(line);
        Post(std::move(message));
    }

    void PostMeasurement(std::uint32_t index) {
        MeasurementResults results;
        results.SetMeasurementIndex(index);
        results.SetChlorine(0.5);
        results.SetTime(At(StartOfDay, 7));
        auto message = std::make_unique<MeasurementMessage>();
        message->SetMeasurementResults(results);
        Post(std::move(message));
    }

    void PostStep(const std::vector<double>& counts) {
        StepParameters step;
        step.stepType = MIXING_STEP;
        DetectorSamples samples;
        for (const double count : counts) {
            samples.emplace_back(count, At(StartOfDay, 7));
        }
        const StepResults results(samples, step);
        auto message = std::make_unique<MeasurementStepDataMessage>();
        message->SetStepResults(&results);
        Post(std::move(message));
    }

    void PostStatus(const char* text) {
        MeasurementStatusInfo status;
        status.SetText(text);
        status.SetTime(At(StartOfDay, 7));
        auto message = std::make_unique<MeasurementStatusMessage>();
        message->SetStatusInfo(status);
        Post(std::move(message));
    }

    // Everything posted is done, and what the controller logged about it went through the router and came back. The
    // first line that the router forwards at all may be the one that only releases its backlog, so two go out.
    void Sync() {
        const std::string number = std::to_string(++m_markers);
        PostLine("#done " + number, ERROR_LOG_LEVEL);
        WaitForLine("#done " + number);
        MessageController::LogMessage("#released " + number, ERROR_LOG_LEVEL, MEASUREMENT_ENGINE);
        MessageController::LogMessage("#back " + number, ERROR_LOG_LEVEL, MEASUREMENT_ENGINE);
        WaitForLine("#back " + number);
    }

    // What reached the system log at ERROR_LOG_LEVEL and above since the start, without time and markers.
    Texts Lines() {
        Sync();
        Texts lines;
        for (const Bench::LogLine& line : Board().Log()) {
            const std::string text = TextOf(line);
            if (text.rfind('#', 0) != 0 && line.priority <= ERROR_LOG_LEVEL) {
                lines.push_back(text);
            }
        }
        return lines;
    }

    void WaitForLine(const std::string& text) {
        EXPECT_TRUE(Board().WaitUntil([&] {
            const auto log = Board().Log();
            return std::any_of(log.begin(), log.end(), [&](const auto& line) { return TextOf(line) == text; });
        })) << text;
    }

    static std::string TextOf(const Bench::LogLine& line) {
        const std::size_t at = line.text.find(" :: ");
        return at == std::string::npos ? line.text : line.text.substr(at + 4);
    }

    std::string OnCard(const std::string& name) const {
        StdString content;
        content.ReadFile(Folder() + "/card/" + name);
        return content.Text();
    }

    bool IsOnCard(const std::string& name) const { return std::filesystem::exists(Folder() + "/card/" + name); }

    static TimeInfo At(time_t seconds, long nanoSeconds) {
        TimeInfo time;
        timespec value{};
        value.tv_sec = seconds;
        value.tv_nsec = nanoSeconds;
        time = value;
        return time;
    }

private:
    AbsentController m_sender{MEASUREMENT_ENGINE};
    std::unique_ptr<TestRouter> m_router;
    std::unique_ptr<LoggingControl> m_logging;
    int m_markers = 0;
};
