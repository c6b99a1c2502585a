// A line about an alarm. Nothing creates one yet. One thread at a time.
#pragma once

#include "Frameworks/Utilities/TimeInfo.h"
#include "Frameworks/Xml/XMLData.h"

class AlarmInformation : public XMLData {
public:
    const StdString& GetText() const { return m_text; }
    void SetText(const StdString& text) { m_text = text; }
    const TimeInfo& GetTime() const { return m_time; }
    void SetTime(const TimeInfo& time) { m_time = time; }

private:
    StdString m_text;
    TimeInfo m_time;
};
