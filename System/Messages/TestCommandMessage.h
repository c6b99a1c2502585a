// A frame from the test link, or with neither header nor payload the end of the link. It travels once, straight to the
// test interface's queue. It owns both parts.
#pragma once

#include <memory>

#include "Frameworks/IPC/Networking/CommunicationsCommand.h"
#include "Frameworks/IPC/Networking/PayloadContainer.h"
#include "Frameworks/Messaging/DataMessageOf.h"

class TestCommandMessage : public DataMessageOf<TestCommandMessage, TEST_COMMAND_DATA_MESSAGE> {
public:
    TestCommandMessage() = default;
    TestCommandMessage(const TestCommandMessage&) = delete;
    // The contents of the parts that the other one has; the receipt stays with the other one.
    TestCommandMessage& operator=(const TestCommandMessage& other);

    // Null where there is none.
    CommunicationsCommand* GetCommand() const { return m_command.get(); }
    void SetCommand(std::unique_ptr<CommunicationsCommand> command) { m_command = std::move(command); }
    PayloadContainer* GetPayload() const { return m_payload.get(); }
    void SetPayload(std::unique_ptr<PayloadContainer> payload) { m_payload = std::move(payload); }

    // Let go of when the message is freed, which tells its sender that it has been worked on.
    void SetReceipt(std::shared_ptr<void> receipt) { m_receipt = std::move(receipt); }

private:
    std::unique_ptr<CommunicationsCommand> m_command;
    std::unique_ptr<PayloadContainer> m_payload;
    std::shared_ptr<void> m_receipt;
};
