#include "System/UserInterfaceDataControl/ChlorineMeasurement.h"

#include "Frameworks/Utilities/UtilityFunctions.h"

namespace {

StdString ValueText(float chlorine) {
    if (chlorine <= 0.0F) {
        return "-.--";
    }
    if (chlorine >= 1.0F) {
        return "+.++";
    }
    StdString text;  // also for NaN, which compares false with both limits
    text.FromDouble(static_cast<double>(chlorine), "%.2f");
    return text;
}

}  // namespace

void ChlorineMeasurement::Init() { m_element = MakeGuiElement("ChlorineValue"); }

void ChlorineMeasurement::SetValue(float chlorine) {
    if (!UtilityFunctions::CheckPointer(m_element.get(), __LINE__, __FILE__)) {
        return;
    }
    m_element->value = chlorine;
    m_element->isSet = true;
}

GuiPair ChlorineMeasurement::Format() {
    if (!UtilityFunctions::CheckPointer(m_element.get(), __LINE__, __FILE__)) {
        return {};
    }
    return m_element->Take(ValueText(std::get<float>(m_element->value)));
}
