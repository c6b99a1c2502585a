// The controller that tests the hardware on request and keeps the run counters. A test blocks its thread while it runs.
// Other threads use messages only.
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

    // Prints to the standard output if the card was inserted or removed since the last notice. It has the signature
    // that SDCard::WatchDeviceDirectory requires; no signal calls it yet. Any thread.
    static void NoticeCard(int signal, siginfo_t* information, void* context);

private:
    SDCard m_card;
    HardwareTests m_tests;
};

// Set by every notice of the card; nothing reads it yet.
extern std::atomic<bool> cardChanged;
