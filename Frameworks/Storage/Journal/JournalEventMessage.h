// An event on its way to the journal. It has no type yet, so nobody can subscribe to it. One thread at a time owns a
// message.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class JournalEventMessage : public DataMessageOf<JournalEventMessage, NO_DATA_MESSAGE> {
public:
    const StdString& GetText() const { return m_text; }
    void SetText(const StdString& text) { m_text = text; }

private:
    StdString m_text;
};
