// The sections of the settings files that are a flat run of items and nothing more.
#pragma once

#include "Frameworks/Configuration/ConfigurationBase.h"

class DeviceMonitorConfigInfo : public ConfigurationBase {};
class GlobalConfigInfo : public ConfigurationBase {};
class LoggingConfigInfo : public ConfigurationBase {};
class MessagingEngineConfigInfo : public ConfigurationBase {};
class RemoteIndicatorControlConfigInfo : public ConfigurationBase {};
class SystemControlConfigInfo : public ConfigurationBase {};
class SystemMonitoringConfigInfo : public ConfigurationBase {};
class TestInterfaceConfigInfo : public ConfigurationBase {};
class UserConfigInfo : public ConfigurationBase {};
class WatchDogSystemConfigInfo : public ConfigurationBase {};  // kept for a watchdog; no file has it
class WebDataInterfaceConfigInfo : public ConfigurationBase {};
