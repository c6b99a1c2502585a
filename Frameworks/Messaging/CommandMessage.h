// One of the eight commands, on its way to every controller.
#pragma once

#include "Frameworks/Messaging/MessageBase.h"

class CommandMessage : public MessageBase {
public:
    explicit CommandMessage(CommandType command = NO_COMMAND) : MessageBase(true), m_command(command) {}

    std::unique_ptr<MessageBase> Clone() const override { return std::make_unique<CommandMessage>(*this); }

    CommandType GetCommandType() const { return m_command; }
    void SetCommandType(CommandType command) { m_command = command; }

private:
    CommandType m_command;
};
