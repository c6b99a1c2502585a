// CommunicationProtocol's operations on the date.
#include <ctime>

#include "Frameworks/Utilities/UtilityFunctions.h"
#include "System/UserInterfaceDataControl/CommunicationProtocol.h"

namespace {

constexpr std::size_t DateBufferSize = 256;

// The text ends with a line feed, before the character that closes the pair: the display starts a new line there.
StdString LocalDate(std::int32_t seconds) {
    const std::time_t moment = seconds;
    char buffer[DateBufferSize] = "";
    tzset();
    std::tm date{};
    if (localtime_r(&moment, &date) != nullptr) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"  // lower-case "am" and "pm" are an extension of libc
        std::strftime(buffer, sizeof buffer, "@%A %B %d,%I:%M:%S %P\n", &date);
#pragma GCC diagnostic pop
    }
    return buffer;
}

}  // namespace

void CommunicationProtocol::InitDateTime() { m_date = MakeGuiElement("DateValue"); }

void CommunicationProtocol::SetDateValue(std::int32_t seconds) {
    if (!UtilityFunctions::CheckPointer(m_date.get(), __LINE__, __FILE__)) {
        return;
    }
    m_date->value = seconds;
    m_date->isSet = true;
}

GuiPair CommunicationProtocol::FormatDateTime() {
    if (!UtilityFunctions::CheckPointer(m_date.get(), __LINE__, __FILE__)) {
        return {};
    }
    return m_date->Take(LocalDate(std::get<std::int32_t>(m_date->value)));
}
