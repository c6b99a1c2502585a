// A text received from the front end. The receiver thread sends it to its controller.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class UserInterfaceDataMessage : public DataMessageOf<UserInterfaceDataMessage, USER_INTERFACE_DATA_MESSAGE> {
public:
    StdString GetText() const { return m_text; }
    void SetText(const StdString& text) { m_text = text; }

private:
    StdString m_text;
};
