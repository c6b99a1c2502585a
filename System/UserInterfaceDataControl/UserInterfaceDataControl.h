// The controller of the front-end link: it sends measurements, status texts and changes of state as frames, and sends
// the commands of the front end to every controller. Other threads use messages only; private members belong to its own
// thread.
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
    bool Init() override;  // first waits ten seconds for the front end to start
    bool DoRegistration() override;
    // The result is ignored: an unsent frame or an unknown command does not end the thread.
    bool ProcessMessage() override;
    bool ProcessDataMessage(DataMessage* message) override;

private:
    // Returns false if the frame was not sent.
    bool SendStringToGUI(CommunicationProtocol* protocol);
    bool SendMeasurement(const MeasurementMessage* message);
    bool SendStatus(const StdString& text);                   // always true
    bool SendGuiResponse(const GUIResponseMessage* message);  // always true
    // Returns true for commands 1, 2 and 4.
    bool ProcessGuiCommand(const UserInterfaceDataMessage* message);
    bool ActOn(const GuiCommand& command);

    std::unique_ptr<ReceiverThreadForGUI> m_receiver;
};
