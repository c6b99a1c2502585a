// A frame from the test link; without header and payload, the end of the link. It is sent once, directly to the queue
// of TestInterface. It owns both parts.
#pragma once

#include <memory>

#include "Frameworks/IPC/Networking/CommunicationsCommand.h"
#include "Frameworks/IPC/Networking/PayloadContainer.h"
#include "Frameworks/Messaging/DataMessageOf.h"

class TestCommandMessage : public DataMessageOf<TestCommandMessage, TEST_COMMAND_DATA_MESSAGE> {
public:
    TestCommandMessage() = default;
    TestCommandMessage(const TestCommandMessage&) = delete;
    // Copies the parts that the other message has, but not its receipt.
    TestCommandMessage& operator=(const TestCommandMessage& other);

    // Null if there is none.
    CommunicationsCommand* GetCommand() const { return m_command.get(); }
    void SetCommand(std::unique_ptr<CommunicationsCommand> command) { m_command = std::move(command); }
    PayloadContainer* GetPayload() const { return m_payload.get(); }
    void SetPayload(std::unique_ptr<PayloadContainer> payload) { m_payload = std::move(payload); }

    // Released when the message is freed, which shows its sender that it has been handled.
    void SetReceipt(std::shared_ptr<void> receipt) { m_receipt = std::move(receipt); }

private:
    std::unique_ptr<CommunicationsCommand> m_command;
    std::unique_ptr<PayloadContainer> m_payload;
    std::shared_ptr<void> m_receipt;
};
