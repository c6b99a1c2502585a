// The text protocol of the front-end link, in both directions. An object holds up to five named values, makes one frame
// of those that were set ("Name~Value" pairs with ";" between them and "`" after the last), and is then empty again.
// Nothing is escaped. One object per frame; one thread.
#pragma once

#include <vector>

#include "System/UserInterfaceDataControl/ChlorineMeasurement.h"
#include "System/UserInterfaceDataControl/CommandFromApplication.h"
#include "System/UserInterfaceDataControl/GuiCommand.h"

class CommunicationProtocol : private GuiMessage {
public:
    CommunicationProtocol() = default;
    CommunicationProtocol(const CommunicationProtocol&) = delete;
    CommunicationProtocol& operator=(const CommunicationProtocol&) = delete;
    virtual ~CommunicationProtocol() = default;

    // Call it first. A setter without it only writes a line to the system log.
    void Init();

    // mg/l.
    void SetChlorineValue(float chlorine);
    void SetDateValue(std::int32_t seconds);  // since the Unix epoch; shown in local time
    // A zero byte ends the text.
    void SetInstrumentStatus(const StdString& text);
    void SetSoftwareVersion(const StdString& text);
    void SetCommandValue(std::int32_t command);

    // The frame of the values that were set, always in the same order; empty if none was.
    StdString Serialize();

    // Never fails: an invalid command gives code 0 or an empty text.
    static GuiCommand ParseCommand(const StdString& text);
    // The front end's side of the protocol; the system does not call these two.
    static StdString BuildCommand(std::int32_t code, const StdString& text);
    static std::vector<GuiPair> ParseFrame(const StdString& frame);  // a closing "`" gives one last, empty pair

protected:
    // Makes the pair of one element and marks the element as not set.
    using Formatter = GuiPair (CommunicationProtocol::*)();

    // One formatter per element, in the order of the frame.
    std::vector<GuiElement*> m_listOfElements;
    std::vector<Formatter> m_listOfFunctions;

private:
    void InitDateTime();
    void InitStatusString();
    void InitVersionToGUI();

    GuiPair FormatChlorine();
    GuiPair FormatDateTime();
    GuiPair FormatStatusString();
    GuiPair FormatVersionToGUI();
    GuiPair FormatCommand();

    static void SetText(GuiElement& element, const StdString& text);
    static GuiPair TakeText(GuiElement& element);
    std::vector<GuiPair> TakePairs();

    std::unique_ptr<ChlorineMeasurement> m_chlorine;
    std::unique_ptr<CommandFromApplication> m_command;
    std::unique_ptr<GuiElement> m_date;
    std::unique_ptr<GuiElement> m_status;
    std::unique_ptr<GuiElement> m_version;
};
