// A test with a router that reads what is logged in the name of the test interface, whole.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Tests/Support/CapturingController.h"

class LoggedTest : public testing::Test {
private:
    // Made before the controllers, which register with it.
    struct Router {
        Router() { MessageBase::SetMessagingControl(&control); }
        MessagingControl control;
    } m_router;

protected:
    // The first line frees those from before and is itself lost.
    LoggedTest() {
        MessageController::LogMessage(Mark, EMERGENCY_LOG_LEVEL, TEST_INTERFACE);
        Settle();
    }

    // The router goes on sending lines to the controllers until it ends, so it ends first.
    ~LoggedTest() override {
        MessageBase::SetMessagingControl(nullptr);
        m_router.control.Kill();
        pthread_join(m_router.control.GetThreadId(), nullptr);
    }

    // The lines so far from errors to information, oldest first. One that is no error says its level.
    std::vector<std::string> Lines() {
        Settle();
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < m_logging.Count(); ++at) {
            const LogInfo& info = m_logging.Get<LogInfoMessage>(at).GetLogInfo();
            if (info.GetLogLevel() > INFORMATIONAL_LOG_LEVEL || info.GetText().Find(Mark) == 0) {
                continue;
            }
            const bool isError = info.GetLogLevel() == ERROR_LOG_LEVEL;
            lines.push_back(info.GetText().Text() + (isError ? "" : " level " + std::to_string(info.GetLogLevel())));
            EXPECT_EQ(m_logging.Get<LogInfoMessage>(at).GetSource(), &testInterface) << lines.back();
        }
        return lines;
    }

    CapturingController testInterface{ControllerNames[TEST_INTERFACE]};

private:
    static constexpr char Mark[] = "all of it, ";

    // Whatever was logged before the mark stands before it.
    void Settle() {
        const StdString mark = Mark + std::to_string(m_marks++);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, TEST_INTERFACE);
        while (!(TextAt(m_seen) == mark)) {
            ++m_seen;
        }
    }

    const StdString& TextAt(std::size_t position) {
        return m_logging.Get<LogInfoMessage>(position).GetLogInfo().GetText();
    }

    int m_marks = 0;
    std::size_t m_seen = 0;
    CapturingController m_logging{ControllerNames[LOGGING_CONTROL], {LOGGING_DATA_MESSAGE}};
};
