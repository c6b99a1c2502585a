#include "System/MeasurementEngine/MeasurementResults.h"

#include <algorithm>
#include <cmath>

#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr double LargestUnsigned = 4294967295.0;

StdString LowByte(std::uint32_t number) { return static_cast<char>(static_cast<unsigned char>(number & 0xFFU)); }

// Whole part; what lies outside the range is held at its ends, and what is no number gives 0, as the instrument's own
// processor converts.
std::uint32_t ToUnsigned(double number) {
    return number > 0.0 ? static_cast<std::uint32_t>(std::min(number, LargestUnsigned)) : 0;
}

}  // namespace

bool MeasurementResults::SetXML() {
    XmlDocument* document = GetDocument();
    if (document == nullptr || !document->AddElement("MEASUREMENT", nullptr, 0)) {
        return false;
    }
    return document->SetAttribute("type", "chlorineMeasurement") &&
           document->SetAttribute("value", LowByte(ToUnsigned(m_chlorine)).CString()) &&
           document->SetAttribute("time", m_time.GetTimeString(9).CString()) &&
           document->SetAttribute("index", LowByte(m_measurementIndex).CString());
}

double Transmittance(double dark, double reference, double sample) {
    if (!(sample > dark) || !(reference > dark)) {
        return 1.0;
    }
    return (sample - dark) / (reference - dark);
}

double Absorbance(double transmittance) { return -std::log10(transmittance); }

double Chlorine(double cellConstant, double absorbance) { return cellConstant * absorbance; }
