// CommunicationProtocol's operations on the software version.
#include "Frameworks/Utilities/UtilityFunctions.h"
#include "System/UserInterfaceDataControl/CommunicationProtocol.h"

void CommunicationProtocol::InitVersionToGUI() { m_version = MakeGuiElement("SoftwareVersion"); }

void CommunicationProtocol::SetSoftwareVersion(const StdString& text) {
    if (UtilityFunctions::CheckPointer(m_version.get(), __LINE__, __FILE__)) {
        SetText(*m_version, text);
    }
}

GuiPair CommunicationProtocol::FormatVersionToGUI() {
    if (!UtilityFunctions::CheckPointer(m_version.get(), __LINE__, __FILE__)) {
        return {};
    }
    return TakeText(*m_version);
}
