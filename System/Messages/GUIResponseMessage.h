// What the measurement engine tells the front end about its state: -1 it entered idle, -2 it entered running.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

class GUIResponseMessage : public DataMessageOf<GUIResponseMessage, GUI_RESPONSE_DATA_MESSAGE> {
public:
    std::int32_t GetStatus() const { return m_status; }
    void SetStatus(std::int32_t status) { m_status = status; }

    StdString GetText() const { return m_text; }
    void SetText(const StdString& text) { m_text = text; }

private:
    std::int32_t m_status = 0;
    StdString m_text;
};
