// The common part of every data message: its type, and a Clone that creates a new message and assigns the DataMessage
// part and the payload to it. A message class derives from this with itself and its type, and adds its payload with
// plain accessors. A payload that cannot be copied by assignment needs an assignment operator in its class. One thread
// at a time owns a message.
#pragma once

#include "Frameworks/Messaging/DataMessage.h"

template <typename Message, DataMessageType Type>
class DataMessageOf : public DataMessage {
public:
    DataMessageOf() { SetDataType(Type); }

    std::unique_ptr<MessageBase> Clone() const override {
        auto copy = std::make_unique<Message>();
        *copy = static_cast<const Message&>(*this);
        return copy;
    }
};
