// Parses random bytes as texts from and to a front end, builds texts of them, and parses those: parsing never fails,
// and built texts read back.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Fuzzing/Require.h"
#include "System/UserInterfaceDataControl/CommunicationProtocol.h"

namespace {

constexpr std::size_t MaxRead = 1024;

// As from one read of the socket.
StdString AsRead(const std::string& bytes) { return bytes.substr(0, MaxRead).c_str(); }

void CheckCommand(const StdString& text) {
    const GuiCommand command = CommunicationProtocol::ParseCommand(text);
    Require(command.text.Find('~') == -1, "a command's text ends at the next mark");
    Require(!(text.Find('~') == -1) || command.text.IsEmpty(), "no mark, no text");
    const GuiCommand again =
        CommunicationProtocol::ParseCommand(CommunicationProtocol::BuildCommand(command.code, command.text));
    Require(again.code == command.code, "a built command has its code");
    Require(again.text == command.text + "\n", "a built command has its text and a line feed");
}

void CheckFrame(const StdString& text) {
    CommunicationProtocol protocol;
    protocol.Init();
    protocol.SetInstrumentStatus(text);
    const StdString frame = protocol.Serialize();
    Require(frame == "InstrumentStatus~" + text + "`", "a status is sent unchanged");
    Require(protocol.Serialize().IsEmpty(), "after a frame nothing is left");
    const std::vector<GuiPair> pairs = CommunicationProtocol::ParseFrame(frame);
    Require(pairs.size() >= 2 && pairs.back() == GuiPair(), "a frame ends in an empty pair");
    Require(pairs.front().first == "InstrumentStatus", "a frame begins with its name");
    CommunicationProtocol::ParseFrame(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    CheckCommand(AsRead(bytes));
    CheckFrame(bytes.c_str());
    return 0;
}
