// The settings of the process, available everywhere. Set them only while no other thread reads them: before the
// controllers are created and after they have ended.
#pragma once

#include <memory>

#include "Frameworks/Configuration/SystemConfigurationFile.h"
#include "Frameworks/Configuration/UserConfigurationFile.h"

class SingletonBase {
public:
    virtual ~SingletonBase() = default;

    // Frees the previous one. Returns true if the new one is not null.
    static bool SetSystemConfiguration(std::unique_ptr<SystemConfigurationFile> file);
    static bool SetUserConfiguration(std::unique_ptr<UserConfigurationFile> file);

    // Null at start.
    static SystemConfigurationFile* GetSystemConfiguration();
    static UserConfigurationFile* GetUserConfiguration();
};
