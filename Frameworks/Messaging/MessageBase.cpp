#include "Frameworks/Messaging/MessageBase.h"

#include <atomic>

#include "Frameworks/Messaging/MessagingControl.h"
#include "Frameworks/Messaging/ThreadControl.h"

namespace {

std::atomic<MessagingControl*> messagingControl{nullptr};

}  // namespace

const StdString MessageBase::NoName;

MessageBase::MessageBase(const MessageBase& other)
    : m_isCommand(other.m_isCommand),
      m_sendCount(other.m_sendCount),
      m_destination(other.m_destination),
      m_source(other.m_source),
      m_timeStamp(other.m_timeStamp) {}

MessageBase& MessageBase::operator=(const MessageBase& other) {
    m_isCommand = other.m_isCommand;
    m_destination = other.m_destination;
    m_source = other.m_source;
    m_sendCount = other.m_sendCount;
    m_timeStamp = other.m_timeStamp;
    return *this;
}

void MessageBase::SetDestination(ThreadControl* destination) {
    m_destination = destination;
    if (destination != nullptr) {
        m_destinationName = &destination->ThreadName();
    }
}

void MessageBase::SetSource(ThreadControl* source) {
    m_source = source;
    if (source != nullptr) {
        m_sourceName = &source->ThreadName();
    }
}

void MessageBase::SetDestination(ControllerType destination) {
    m_destinationName = &ControllerNames[destination];
    if (MessagingControl* router = messagingControl) {
        SetDestination(router->GetThreadByName(*m_destinationName));
    }
}

void MessageBase::SetSource(ControllerType source) {
    const bool isController = source >= 0 && source < ControllerCount;
    m_sourceName = &ControllerNames[isController ? source : MESSAGING_CONTROL];
    MessagingControl* router = messagingControl;
    SetSource(router == nullptr ? nullptr : router->GetThreadByName(*m_sourceName));
}

bool MessageBase::Send(std::unique_ptr<MessageBase> message) {
    ThreadControl* destination = message->m_destination;
    if (message->m_source == nullptr || destination == nullptr) {
        return false;
    }
    ++message->m_sendCount;
    destination->ReceiveMessage(std::move(message));
    return true;
}

bool MessageBase::SetMessagingControl(MessagingControl* router) {
    messagingControl = router;
    return router != nullptr;
}

MessagingControl* MessageBase::GetMessagingControl() { return messagingControl; }
