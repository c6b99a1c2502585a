// The instrument's end of the link to the front end: measurements, status texts and changes of state go out as frames,
// and the commands that come back go to every controller. Other threads reach it by messages alone; all that is private
// here runs on its own thread.
#pragma once

#include "Frameworks/Messaging/MeasurementStatusMessage.h"
#include "Frameworks/Messaging/ThreadControl.h"
#include "System/Messages/GUIResponseMessage.h"
#include "System/Messages/MeasurementMessage.h"
#include "System/UserInterfaceDataControl/CommunicationProtocol.h"
#include "System/UserInterfaceDataControl/ReceiverThreadForGUI.h"

class UserInterfaceDataControl final : public ThreadControl {
public:
    UserInterfaceDataControl();  // starts the thread

    std::int32_t Exit() override;
    bool Init() override;  // takes ten seconds, which the front end has to come up
    bool DoRegistration() override;
    // Any answer: a frame that didn't go out and a command that nobody knows don't end this thread.
    bool ProcessMessage() override;
    bool ProcessDataMessage(DataMessage* message) override;

private:
    // False where the front end didn't get it.
    bool SendStringToGUI(CommunicationProtocol* protocol);
    bool SendMeasurement(const MeasurementMessage* message);
    bool SendStatus(const StdString& text);                   // true always
    bool SendGuiResponse(const GUIResponseMessage* message);  // true always
    // True where the command is one of those that move the instrument by a state.
    bool ProcessGuiCommand(const UserInterfaceDataMessage* message);
    bool ActOn(const GuiCommand& command);

    std::unique_ptr<ReceiverThreadForGUI> m_receiver;
};
