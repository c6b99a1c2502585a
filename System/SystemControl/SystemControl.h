// The top controller: it reads the settings, creates the other controllers, moves them through their states, starts the
// measurement automatically if the settings ask for it, and stops everything on RESET_SYSTEM. One object is one
// generation of the system; its creator joins its thread, destroys it and may create the next.
#pragma once

#include <memory>
#include <vector>

#include "Frameworks/Messaging/MessagingControl.h"
#include "Frameworks/Messaging/ThreadControl.h"

class SystemControl : public ThreadControl {
public:
    SystemControl();

    std::int32_t Exit() override;
    bool Init() override;
    bool DoRegistration() override;
    bool ProcessCommandMessage(CommandMessage* message) override;
    bool ProcessDataMessage(DataMessage* message) override;
    bool ProcessTimeOut() override;

    // Loads "./configuration/user.conf.xml" into SingletonBase. Complete, but nothing calls it.
    static bool LoadUserConfiguration();

private:
    bool AddThread(std::unique_ptr<ThreadControl> thread);
    bool CreateThreads();
    bool CreateMessagingControl();
    bool LoadSystemConfiguration();
    bool ReadConfiguration();
    void RegisterAllCommands(ThreadControl* thread);
    void ResetSystem();
    void JoinThreads();

    std::uint32_t m_defaultMeasurementTimeOut = 360000;  // ms; stored only
    StdString m_userConfigurationFile;                   // stored only
    std::int32_t m_autoStartDelay = -1;                  // ms of silence
    bool m_autoStart = false;
    std::vector<std::unique_ptr<ThreadControl>> m_controllers;  // in order of creation
};
