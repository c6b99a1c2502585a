// The results of one measurement cycle, and their formulas. One thread at a time.
#pragma once

#include <cstdint>

#include "Frameworks/Utilities/TimeInfo.h"
#include "Frameworks/Xml/XMLData.h"

class MeasurementResults : public XMLData {
public:
    double GetChlorine() const { return m_chlorine; }
    double GetAbsorbance() const { return m_absorbance; }
    double GetTransmittance() const { return m_transmittance; }
    double GetDarkCount() const { return m_darkCount; }
    double GetReferenceCount() const { return m_referenceCount; }
    double GetSampleCount() const { return m_sampleCount; }
    std::uint32_t GetMeasurementIndex() const { return m_measurementIndex; }
    const TimeInfo& GetTime() const { return m_time; }

    void SetChlorine(double chlorine) { m_chlorine = chlorine; }  // in the unit of the cell constant
    void SetAbsorbance(double absorbance) { m_absorbance = absorbance; }
    void SetTransmittance(double transmittance) { m_transmittance = transmittance; }
    void SetDarkCount(double count) { m_darkCount = count; }
    void SetReferenceCount(double count) { m_referenceCount = count; }
    void SetSampleCount(double count) { m_sampleCount = count; }
    void SetMeasurementIndex(std::uint32_t index) { m_measurementIndex = index; }
    void SetTime(const TimeInfo& time) { m_time = time; }

    // Writes a MEASUREMENT element at the document's current position and moves the position to it. "value" and "index"
    // are one character each, the low eight bits of the number. Returns false without a document, or if the element or
    // an attribute cannot be written.
    virtual bool SetXML();

private:
    double m_chlorine = 99999.9;  // marks a record without results
    double m_absorbance = 0.0;
    double m_transmittance = 0.0;
    double m_darkCount = 0.0;
    double m_referenceCount = 0.0;
    double m_sampleCount = 0.0;
    std::uint32_t m_measurementIndex = 0;
    TimeInfo m_time;  // now
};

// The ratio of sample to reference light, each minus the dark count; 1.0 if the sample or the reference is not above
// the dark count. A sample brighter than the reference gives more than 1.
double Transmittance(double dark, double reference, double sample);

// The negated decadic logarithm: a transmittance of 1.0 gives negative zero.
double Absorbance(double transmittance);

// In the unit of the cell constant.
double Chlorine(double cellConstant, double absorbance);
