// A router, and what is logged through it.
#pragma once

#include <string>
#include <vector>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MessageController.h"
#include "Tests/Support/CapturingController.h"

class LogReader {
public:
    // The first line releases earlier ones and is itself lost. The origin of a line must be a registered controller.
    LogReader() {
        MessageController::LogMessage(Mark, EMERGENCY_LOG_LEVEL, LOGGING_CONTROL);
        Settle();
    }
    LogReader(const LogReader&) = delete;
    LogReader& operator=(const LogReader&) = delete;

    // The router sends to the controllers until it ends, so it ends first.
    ~LogReader() { EndRouter(); }

    // For a test whose own controllers subscribed to the router.
    void EndRouter() { m_router.End(); }

    // The lines so far from errors to information, oldest first. A line that is not an error of TestInterface ends with
    // its level and origin.
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

    // All that was logged before is read afterwards.
    void Settle() {
        const StdString mark = Mark + std::to_string(m_marks++);
        MessageController::LogMessage(mark, EMERGENCY_LOG_LEVEL, LOGGING_CONTROL);
        while (!(m_logging.Get<LogInfoMessage>(m_seen).GetLogInfo().GetText() == mark)) {
            ++m_seen;
        }
    }

private:
    static constexpr char Mark[] = "all of it, ";

    TestRouter m_router;  // before the controllers, which register with it
    int m_marks = 0;
    std::size_t m_seen = 0;
    CapturingController m_logging{ControllerNames[LOGGING_CONTROL], {LOGGING_DATA_MESSAGE}};
};
