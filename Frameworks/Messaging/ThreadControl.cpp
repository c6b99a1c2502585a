#include "Frameworks/Messaging/ThreadControl.h"

#include "Frameworks/Messaging/LogInfoMessage.h"
#include "Frameworks/Messaging/MessagingControl.h"

namespace {

const CommandMessage* AsCommand(const MessageBase& message) {
    return message.IsCommand() ? static_cast<const CommandMessage*>(&message) : nullptr;
}

bool IsLogMessage(const MessageBase& message) {
    return !message.IsCommand() && static_cast<const DataMessage&>(message).GetDataType() == LOGGING_DATA_MESSAGE;
}

StdString KindAndName(const MessageBase& message) {
    if (const CommandMessage* command = AsCommand(message)) {
        const CommandType type = command->GetCommandType();
        return "Command Message (" + (type >= 0 && type < CommandCount ? CommandNames[type] : StdString());
    }
    const DataMessageType type = static_cast<const DataMessage&>(message).GetDataType();
    return "Data Message (" + (type >= 0 && type < DataMessageCount ? DataMessageNames[type] : StdString());
}

}  // namespace

bool ThreadControl::Init() {
    SetState(INITIALIZING_STATE);
    const bool result = ThreadBase::Init();
    Buffer();
    return result;
}

void ThreadControl::LogInitializing() { Log("Initializing Thread for - " + GetThreadName(), DEBUG_LOG_LEVEL); }

bool ThreadControl::InitController() {
    LogInitializing();
    return ThreadControl::Init();
}

std::int32_t ThreadControl::Run() {
    bool keepGoing = Init();
    while (keepGoing) {
        const bool woken = WaitForMessage();
        if (GetState() == RESETTING_SYSTEM_STATE) {
            m_currentMessage.reset();
            keepGoing = false;
        } else if (woken) {
            keepGoing = DrainQueue();
        } else {
            keepGoing = ProcessTimeOut();
        }
    }
    return Exit();
}

// Handles everything that is queued in one wake-up; the result of the last handler counts. KILLING_SYSTEM ends the
// loop, and ends the thread if the thread sent it to itself.
bool ThreadControl::DrainQueue() {
    bool keepGoing = true;
    while (m_currentMessage != nullptr) {
        const CommandMessage* command = AsCommand(*m_currentMessage);
        if (command != nullptr && command->GetCommandType() == KILLING_SYSTEM) {
            if (command->GetSource() == this && command->GetDestination() == this) {
                keepGoing = false;
            }
            m_currentMessage.reset();
            return keepGoing;
        }
        keepGoing = ProcessMessage();
        m_currentMessage = Buffer().PopFront();
    }
    return keepGoing;
}

bool ThreadControl::WaitForMessage() {
    MessageBuffer& buffer = Buffer();
    m_currentMessage = buffer.WaitForMessage(m_timeOut);
    return m_currentMessage != nullptr || buffer.GetLastError() == 0;
}

bool ThreadControl::ProcessMessage() {
    if (m_currentMessage == nullptr) {
        return false;
    }
    return m_currentMessage->IsCommand() ? ProcessCommandMessage(static_cast<CommandMessage*>(m_currentMessage.get()))
                                         : ProcessDataMessage(static_cast<DataMessage*>(m_currentMessage.get()));
}

bool ThreadControl::ProcessCommandMessage(CommandMessage* message) {
    if (message == nullptr) {
        return false;
    }
    FollowStateCommand(message->GetCommandType());
    return true;
}

bool ThreadControl::ProcessTimeOut() {
    Log("Processing TimeOut for - " + GetThreadName(), DEBUG_LOG_LEVEL);
    return true;
}

void ThreadControl::Kill() {
    Log("Killing Thread for - " + GetThreadName(), DEBUG_LOG_LEVEL);
    SetState(RESETTING_SYSTEM_STATE);
    auto message = std::make_unique<CommandMessage>(KILLING_SYSTEM);
    message->SetDestination(this);
    message->SetSource(this);
    MessageBase::Send(std::move(message));
}

// The queue is emptied here and freed by the destructor, so that a late sender never uses a freed queue.
std::int32_t ThreadControl::Exit() {
    SetState(POST_EXITING_STATE);
    while (Buffer().PopFront() != nullptr) {
    }
    return ThreadBase::Exit();
}

void ThreadControl::SetState(ThreadState state) {
    ThreadBase::SetState(state);
    Log("Changing to " + ThreadStateNames[state] + " State for - " + GetThreadName(), DEBUG_LOG_LEVEL);
}

bool ThreadControl::RegisterCommand(ThreadControl* /*thread*/, CommandType /*command*/) { return false; }

bool ThreadControl::RegisterDataMessage(ThreadControl* /*thread*/, DataMessageType /*type*/) { return false; }

// Logging the receipt of log messages would never end.
void ThreadControl::LogReceipt(const MessageBase& message) {
    if (!IsLogMessage(message)) {
        Log(KindAndName(message) + ") : From - " + message.GetSourceName() + " : To - " + message.GetDestinationName(),
            DEBUG_LOG_LEVEL);
    }
}

void ThreadControl::SendCommand(CommandType command) {
    if (IsLogged(DEBUG_LOG_LEVEL)) {
        Log("Sending Command - " + CommandNames[command], DEBUG_LOG_LEVEL);
    }
    auto message = std::make_unique<CommandMessage>(command);
    message->SetDestination(MessageBase::GetMessagingControl());
    message->SetSource(this);
    MessageBase::Send(std::move(message));
}

void ThreadControl::SendLogLine(StdString text, LogLevel level) {
    MessagingControl* router = MessageBase::GetMessagingControl();
    if (router == nullptr) {
        return;
    }
    auto message = std::make_unique<LogInfoMessage>(std::move(text), Effective(level));
    message->SetDestination(router);
    message->SetSource(this);
    MessageBase::Send(std::move(message));
}

bool ThreadControl::RegisterForCommand(CommandType command) {
    if (MessagingControl* router = MessageBase::GetMessagingControl()) {
        router->RegisterCommand(this, command);
    }
    return false;
}

bool ThreadControl::RegisterForDataMessage(DataMessageType type) {
    MessagingControl* router = MessageBase::GetMessagingControl();
    return router != nullptr && router->RegisterDataMessage(this, type);
}

// Made by the first user, the thread or a sender, so that no early message is lost.
MessageBuffer& ThreadControl::MakeBuffer() {
    const MutexLock lock(m_bufferMutex);
    if (m_buffer == nullptr) {
        m_ownedBuffer = std::make_unique<MessageBuffer>(GetThreadName());
        m_buffer = m_ownedBuffer.get();
    }
    return *m_buffer;
}

bool ThreadControl::FollowStateCommand(CommandType command) {
    switch (command) {
        case MOVE_TO_IDLE:
            SetState(IDLE_STATE);
            return true;
        case MOVE_TO_RUNNING:
            SetState(RUNNING_STATE);
            return true;
        case MOVE_TO_SHUTDOWN:
            SetState(SHUTDOWN_STATE);
            return true;
        case MOVE_TO_TEST:
            SetState(TEST_STATE);
            return true;
        default:
            return false;
    }
}

void JoinThread(const ThreadBase& thread, const char* failure, LogLevel level, ControllerType origin) {
    const pthread_t id = thread.GetThreadId();
    // NOLINTNEXTLINE(bugprone-posix-return): see the header
    if (id != 0 && pthread_join(id, nullptr) < 0) {
        MessageController::LogMessage(failure, level, origin);
    }
}
