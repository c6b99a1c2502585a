// CommunicationProtocol's operations on the instrument status.
#include "Frameworks/Utilities/UtilityFunctions.h"
#include "System/UserInterfaceDataControl/CommunicationProtocol.h"

void CommunicationProtocol::InitStatusString() { m_status = MakeGuiElement("InstrumentStatus"); }

void CommunicationProtocol::SetInstrumentStatus(const StdString& text) {
    if (UtilityFunctions::CheckPointer(m_status.get(), __LINE__, __FILE__)) {
        SetText(*m_status, text);
    }
}

GuiPair CommunicationProtocol::FormatStatusString() {
    if (!UtilityFunctions::CheckPointer(m_status.get(), __LINE__, __FILE__)) {
        return {};
    }
    return TakeText(*m_status);
}
