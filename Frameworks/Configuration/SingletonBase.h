// The settings of the process, reached from everywhere. Set them while no other thread asks: before the controllers are
// created, and after they have ended.
#pragma once

#include <memory>

#include "Frameworks/Configuration/SystemConfigurationFile.h"
#include "Frameworks/Configuration/UserConfigurationFile.h"

class SingletonBase {
public:
    virtual ~SingletonBase() = default;

    // Frees what was held before. True where the new one is not null.
    static bool SetSystemConfiguration(std::unique_ptr<SystemConfigurationFile> file);
    static bool SetUserConfiguration(std::unique_ptr<UserConfigurationFile> file);

    // Null at start.
    static SystemConfigurationFile* GetSystemConfiguration();
    static UserConfigurationFile* GetUserConfiguration();
};
