// Data for the controllers that subscribed to its type.
#pragma once

#include "Frameworks/Messaging/MessageBase.h"

// A handler tests it first, so that no controller acts on its own reply.
enum MessageSubType : std::int32_t { REQUEST_SUB_TYPE = 0, RESPONSE_SUB_TYPE = 1, ACKNOWLEDGE_SUB_TYPE = 2 };

class DataMessage : public MessageBase {
public:
    DataMessageType GetDataType() const { return m_dataType; }
    void SetDataType(DataMessageType type) { m_dataType = type; }
    std::int32_t GetSubType() const { return m_subType; }
    void SetSubType(std::int32_t subType) { m_subType = subType; }

protected:
    DataMessage() : MessageBase(false) {}

private:
    std::int32_t m_subType = REQUEST_SUB_TYPE;
    DataMessageType m_dataType = NO_DATA_MESSAGE;
};
