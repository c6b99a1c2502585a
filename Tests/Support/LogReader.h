// A router, and what is logged through it.
#pragma once

#include <string>
#include <vector>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Tests/Support/CapturingController.h"

class LogReader {
public:
    // The first line frees those from before and is itself lost. A line needs its origin among the controllers.
    LogReader() {
        MessageController::LogMessage(Mark, EMERGENCY_LOG_LEVEL, LOGGING_CONTROL);
        Settle();
    }
    LogReader(const LogReader&) = delete;
    LogReader& operator=(const LogReader&) = delete;

    // The router goes on sending to the controllers until it ends, so it ends first.
    ~LogReader() { EndRouter(); }

    // For whoever has controllers of its own at the router.
    void EndRouter() {
        if (MessageBase::GetMessagingControl() == &m_router.control) {
            MessageBase::SetMessagingControl(nullptr);
            m_router.control.Kill();
            pthread_join(m_router.control.GetThreadId(), nullptr);
        }
    }

    // The lines so far from errors to information, oldest first. One that is no error of the test interface says its
    // level and whose it is.
    std::vector<std::string> Lines() {
        Settle();
        std::vector<std::string> lines;
        for (std::size_t at = 0; at <= m_seen; ++at) {
            const auto& message = m_logging.Get<LogInfoMessage>(at);
            const LogInfo& info = message.GetLogInfo();
            if (info.GetLogLevel() > INFORMATIONAL_LOG_LEVEL || info.GetText().Find(Mark) == 0) {
                continue;
            }
            lines.push_back(info.GetText().Text());
            if (info.GetLogLevel() != ERROR_LOG_LEVEL) {
                lines.back() += " level " + std::to_string(info.GetLogLevel());
            }
            const StdString source = message.GetSource()->GetThreadName();
            if (!(source == ControllerNames[TEST_INTERFACE])) {
                lines.back() += " of " + source.Text();
            }
        }
        return lines;
    }

    // Whatever was logged before is seen after it.
    void Settle() {
        const StdString mark = Mark + std::to_string(m_marks++);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, LOGGING_CONTROL);
        while (!(m_logging.Get<LogInfoMessage>(m_seen).GetLogInfo().GetText() == mark)) {
            ++m_seen;
        }
    }

private:
    static constexpr char Mark[] = "all of it, ";

    // Made before the controllers, which register with it.
    struct Router {
        Router() { MessageBase::SetMessagingControl(&control); }
        MessagingControl control;
    } m_router;

    int m_marks = 0;
    std::size_t m_seen = 0;
    CapturingController m_logging{ControllerNames[LOGGING_CONTROL], {LOGGING_DATA_MESSAGE}};
};
