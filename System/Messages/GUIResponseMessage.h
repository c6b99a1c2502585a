// A change of the measurement engine's state, for the front end.
#pragma once

#include "Frameworks/Messaging/DataMessageOf.h"

enum GUIResponseStatus : std::int32_t { ENTERED_IDLE = -1, ENTERED_RUNNING = -2 };

class GUIResponseMessage : public DataMessageOf<GUIResponseMessage, GUI_RESPONSE_DATA_MESSAGE> {
public:
    // A GUIResponseStatus.
    std::int32_t GetStatus() const { return m_status; }
    void SetStatus(std::int32_t status) { m_status = status; }

    StdString GetText() const { return m_text; }
    void SetText(const StdString& text) { m_text = text; }

private:
    std::int32_t m_status = 0;
    StdString m_text;
};
