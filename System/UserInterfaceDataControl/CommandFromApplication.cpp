#include "System/UserInterfaceDataControl/CommandFromApplication.h"

#include "Frameworks/Utilities/UtilityFunctions.h"

void CommandFromApplication::Init() { m_element = MakeGuiElement("CMD"); }

void CommandFromApplication::SetValue(std::int32_t command) {
    if (!UtilityFunctions::CheckPointer(m_element.get(), __LINE__, __FILE__)) {
        return;
    }
    m_element->value = command;
    m_element->isSet = true;
}

GuiPair CommandFromApplication::Format() {
    if (!UtilityFunctions::CheckPointer(m_element.get(), __LINE__, __FILE__)) {
        return {};
    }
    StdString text;
    text.FromInteger(std::get<std::int32_t>(m_element->value));
    return m_element->Take(text);
}
