#include "System/Messages/MeasurementResults.h"

#include <cmath>

#include "Frameworks/Utilities/Truncate.h"
#include "Frameworks/Xml/XmlDocument.h"

namespace {

StdString LowByte(std::uint32_t number) { return static_cast<char>(static_cast<unsigned char>(number & 0xFFU)); }

}  // namespace

bool MeasurementResults::SetXML() {
    XmlDocument* document = GetDocument();
    if (document == nullptr || !document->AddElement("MEASUREMENT", nullptr, 0)) {
        return false;
    }
    return document->SetAttribute("type", "chlorineMeasurement") &&
           document->SetAttribute("value", LowByte(TruncateTo<std::uint32_t>(m_chlorine)).CString()) &&
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
