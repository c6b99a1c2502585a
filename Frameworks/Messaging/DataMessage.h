// Data for those who subscribed to its type.
#pragma once

#include "Frameworks/Messaging/MessageBase.h"

// What a handler tests first, so that no controller acts on its own reply.
enum MessageSubType : std::int32_t { REQUEST_SUB_TYPE = 0, RESPONSE_SUB_TYPE = 1, ACKNOWLEDGE_SUB_TYPE = 2 };

class DataMessage : public MessageBase {
public:
    DataMessageType GetDataType() const { return m_dataType; }
    void SetDataType(DataMessageType type) { m_dataType = type; }
    std::int32_t GetSubType() const { return m_subType; }
    void SetSubType(std::int32_t subType) { m_subType = subType; }

protected:
    explicit DataMessage(DataMessageType type) : MessageBase(false), m_dataType(type) {}

private:
    std::int32_t m_subType = REQUEST_SUB_TYPE;
    DataMessageType m_dataType;
};

// The base of a data message whose payload is copied by its copy constructor.
template <typename Message, DataMessageType Type>
class CopiedDataMessage : public DataMessage {
public:
    std::unique_ptr<MessageBase> Clone() const override {
        return std::make_unique<Message>(static_cast<const Message&>(*this));
    }

protected:
    CopiedDataMessage() : DataMessage(Type) {}
};
