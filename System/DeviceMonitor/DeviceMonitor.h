// The controller that looks after the board and its wear: it tests the hardware on request and keeps the run counters.
// A test blocks it for as long as it runs. Other threads reach it by messages alone.
#pragma once

#include <atomic>
#include <csignal>

#include "Frameworks/Messaging/ThreadControl.h"
#include "Frameworks/Storage/SDCard.h"
#include "System/DeviceMonitor/HardwareTests.h"

class DeviceMonitor final : public ThreadControl {
public:
    DeviceMonitor();  // starts the thread
    ~DeviceMonitor() override;

    bool Init() override;
    bool DoRegistration() override;
    bool ProcessCommandMessage(CommandMessage* message) override;
    bool ProcessDataMessage(DataMessage* message) override;  // always true
    bool ProcessTimeOut() override;

    // Tells on the standard output when the card has come or gone since the last notice. It has the form that
    // SDCard::WatchDeviceDirectory asks for; no signal calls it yet. Any thread.
    static void NoticeCard(int signal, siginfo_t* information, void* context);

private:
    SDCard m_card;
    HardwareTests m_tests;
};

// Set by every notice of the card, for whoever will look at the card then.
extern std::atomic<bool> cardChanged;
