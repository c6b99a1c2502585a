// One reading of the detector. One thread at a time.
#pragma once

#include <vector>

#include "Frameworks/Utilities/TimeInfo.h"
#include "Frameworks/Xml/XMLData.h"

class DetectorInformation : public XMLData {
public:
    DetectorInformation() = default;
    DetectorInformation(double count, const TimeInfo& time) : m_count(count), m_time(time) {}

    double GetCount() const { return m_count; }  // a signed 24-bit reading
    const TimeInfo& GetTime() const { return m_time; }

    void SetCount(double count) { m_count = count; }
    void SetTime(const TimeInfo& time) { m_time = time; }

private:
    double m_count = 0.0;
    TimeInfo m_time;
};

// Of one step, in time order.
using DetectorSamples = std::vector<DetectorInformation>;
