#include "System/UserInterfaceDataControl/CommunicationProtocol.h"

#include <cstring>

#include "Frameworks/Utilities/StrTokenizer.h"
#include "Frameworks/Utilities/TryMake.h"
#include "Frameworks/Utilities/UtilityFunctions.h"

namespace {

constexpr char NameEnd[] = "~";
constexpr char PairEnd[] = ";";
constexpr char FrameEnd[] = "`";

GuiPair SplitPair(const StdString& field) {
    StrTokenizer parts;
    parts.Tokenize(field, NameEnd);
    return {parts.GetToken(0), parts.GetToken(1)};
}

StdString JoinPairs(const std::vector<GuiPair>& pairs) {
    StdString frame;
    for (const auto& [name, value] : pairs) {
        frame += (frame.IsEmpty() ? "" : PairEnd) + name + NameEnd + value;
    }
    return frame.IsEmpty() ? frame : frame + FrameEnd;
}

}  // namespace

void CommunicationProtocol::Init() {
    m_chlorine = TryMake<ChlorineMeasurement>();
    if (m_chlorine != nullptr) {
        m_chlorine->Init();
    }
    m_command = TryMake<CommandFromApplication>();
    if (m_command != nullptr) {
        m_command->Init();
    }
    InitDateTime();
    InitStatusString();
    InitVersionToGUI();
    m_listOfElements = {
        m_chlorine != nullptr ? m_chlorine->GetElement() : nullptr, m_date.get(), m_status.get(), m_version.get(),
        m_command != nullptr ? m_command->GetElement() : nullptr,
    };
    m_listOfFunctions = {
        &CommunicationProtocol::FormatChlorine,      //
        &CommunicationProtocol::FormatDateTime,      //
        &CommunicationProtocol::FormatStatusString,  //
        &CommunicationProtocol::FormatVersionToGUI,  //
        &CommunicationProtocol::FormatCommand,
    };
}

void CommunicationProtocol::SetChlorineValue(float chlorine) {
    if (UtilityFunctions::CheckPointer(m_chlorine.get(), __LINE__, __FILE__)) {
        m_chlorine->SetValue(chlorine);
    }
}

void CommunicationProtocol::SetCommandValue(std::int32_t command) {
    if (UtilityFunctions::CheckPointer(m_command.get(), __LINE__, __FILE__)) {
        m_command->SetValue(command);
    }
}

GuiPair CommunicationProtocol::FormatChlorine() { return m_chlorine->Format(); }

GuiPair CommunicationProtocol::FormatCommand() { return m_command->Format(); }

// If the allocation fails, the element is set without a text.
void CommunicationProtocol::SetText(GuiElement& element, const StdString& text) {
    const std::size_t length = text.Text().size();
    std::unique_ptr<char[]> copy(new (std::nothrow) char[length + 1]());
    if (copy != nullptr) {
        std::memcpy(copy.get(), text.CString(), length);
    }
    element.value = std::move(copy);
    element.isSet = true;
}

GuiPair CommunicationProtocol::TakeText(GuiElement& element) {
    return element.Take(std::get<std::unique_ptr<char[]>>(element.value).get());
}

StdString CommunicationProtocol::Serialize() {
    StdString frame = JoinPairs(TakePairs());
    Init();
    return frame;
}

std::vector<GuiPair> CommunicationProtocol::TakePairs() {
    std::vector<GuiPair> pairs;
    if (m_listOfFunctions.size() != m_listOfElements.size()) {
        UtilityFunctions::LogToSystem("CommunicationProtocol", "m_listOfFunctions and m_listOfElements are mismatched");
        return pairs;
    }
    for (std::size_t index = 0; index < m_listOfElements.size(); ++index) {
        const GuiElement* element = m_listOfElements[index];
        if (UtilityFunctions::CheckPointer(element, __LINE__, __FILE__) && element->isSet) {
            pairs.push_back((this->*m_listOfFunctions[index])());
        }
    }
    return pairs;
}

GuiCommand CommunicationProtocol::ParseCommand(const StdString& text) {
    StrTokenizer fields;
    fields.Tokenize(text, NameEnd);
    return {fields.GetInteger(0), fields.GetToken(1)};
}

StdString CommunicationProtocol::BuildCommand(std::int32_t code, const StdString& text) {
    StdString command;
    command.FromInteger(code);
    return command + NameEnd + text + "\n";
}

std::vector<GuiPair> CommunicationProtocol::ParseFrame(const StdString& frame) {
    StdString text = frame;
    text.Replace(FrameEnd, PairEnd);
    StrTokenizer fields;
    fields.Tokenize(text, PairEnd);
    std::vector<GuiPair> pairs;
    pairs.reserve(static_cast<std::size_t>(fields.GetCount()));
    for (int index = 0; index < fields.GetCount(); ++index) {
        pairs.push_back(SplitPair(fields.GetToken(index)));
    }
    return pairs;
}
