// One line of progress of a measurement.
#pragma once

#include "Frameworks/Utilities/TimeInfo.h"
#include "Frameworks/Xml/XMLData.h"

class MeasurementStatusInfo : public XMLData {
public:
    const StdString& GetText() const { return m_text; }
    void SetText(const StdString& text) { m_text = text; }
    const TimeInfo& GetTime() const { return m_time; }
    void SetTime(const TimeInfo& time) { m_time = time; }

    // The time with nine digits, " :: " and the text.
    StdString GetLine() const { return m_time.GetTimeString(9) + " :: " + m_text; }

private:
    StdString m_text;
    TimeInfo m_time;
};
