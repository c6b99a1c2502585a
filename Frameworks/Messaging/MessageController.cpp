#include "Frameworks/Messaging/MessageController.h"

#include <utility>

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Frameworks/Messaging/MessagingControl.h"
#include "Frameworks/Utilities/Report.h"

namespace {

// The layers below report through the router from before main on.
[[maybe_unused]] const bool reportsReachTheRouter = (SetReportFunction(MessageController::LogMessage), true);

}  // namespace

void MessageController::SendLogLine(StdString text, LogLevel level, ControllerType origin) {
    if (origin == NO_CONTROLLER) {
        LogMessage("Invalid Controller Type", ERROR_LOG_LEVEL, MESSAGING_CONTROL);
        return;
    }
    auto message = std::make_unique<LogInfoMessage>(std::move(text), level);
    message->SetDestination(MessageBase::GetMessagingControl());
    message->SetSource(origin);
    MessageBase::Send(std::move(message));
}

bool MessageController::SendMessage(std::unique_ptr<MessageBase> message, ControllerType origin) {
    if (message == nullptr) {
        LogMessage("Attempt to send NULL message", ERROR_LOG_LEVEL, origin);
        return false;
    }
    if (origin == NO_CONTROLLER) {
        LogMessage("Invalid Controller Type", ERROR_LOG_LEVEL, MESSAGING_CONTROL);
        return false;
    }
    message->SetDestination(MessageBase::GetMessagingControl());
    message->SetSource(origin);
    MessageBase::Send(std::move(message));
    return true;
}

bool MessageController::SendStatusMessage(const StdString& text) {
    MeasurementStatusInfo status;
    status.SetText(text);
    auto message = std::make_unique<MeasurementStatusMessage>();
    message->SetStatusInfo(status);
    return SendMessage(std::move(message), MEASUREMENT_ENGINE);
}
