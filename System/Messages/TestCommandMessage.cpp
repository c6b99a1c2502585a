#include "System/Messages/TestCommandMessage.h"

TestCommandMessage& TestCommandMessage::operator=(const TestCommandMessage& other) {
    if (this == &other) {
        return *this;
    }
    DataMessage::operator=(other);
    if (other.m_command != nullptr) {
        m_command = std::make_unique<CommunicationsCommand>(*other.m_command);
    }
    if (other.m_payload != nullptr) {
        m_payload = std::make_unique<PayloadContainer>(*other.m_payload);
    }
    return *this;
}
