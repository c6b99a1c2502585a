// What every data message has in common: its type, and a Clone that makes a new message and assigns the DataMessage
// part and the payload to it. A message class derives from this with itself and its type, and adds its payload with
// plain accessors; a payload that can't be copied by assignment gives the class an assignment of its own. One thread at
// a time owns a message.
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
