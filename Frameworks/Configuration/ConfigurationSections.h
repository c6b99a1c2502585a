// The sections that are only a flat run of items. Threads as for ConfigurationBase.
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
class WatchDogSystemConfigInfo : public ConfigurationBase {};  // for a watchdog; no file has it
class WebDataInterfaceConfigInfo : public ConfigurationBase {};
