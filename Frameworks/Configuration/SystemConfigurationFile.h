// The analyzer's settings file: the document and one object per section. One thread reads it before the controllers
// exist; after that any thread may ask for items.
#pragma once

#include <memory>

#include "Frameworks/Configuration/ConfigurationSections.h"
#include "Frameworks/Configuration/MeasurementEngineConfigInfo.h"
#include "Frameworks/Xml/XMLData.h"

class SystemConfigurationFile : public XMLData {
public:
    SystemConfigurationFile();
    SystemConfigurationFile(const SystemConfigurationFile&) = delete;
    SystemConfigurationFile& operator=(const SystemConfigurationFile&) = delete;
    ~SystemConfigurationFile() override;

    // Returns false, without a report, if the file can't be read or is not well formed; the previous content then
    // stays.
    bool Load(const StdString& path);

    // Builds the sections. A section that can't be read is reported and stays null; the others are still read. Returns
    // false only without a document or without ROOT_ANALYZER.
    bool GetXML();

    void Cleanup();  // sections and document

    // Null if the section could not be read.
    GlobalConfigInfo* GetGlobalConfigInfo() const { return m_general.get(); }
    LoggingConfigInfo* GetLoggingConfigInfo() const { return m_logging.get(); }
    MeasurementEngineConfigInfo* GetMeasurementEngineConfigInfo() const { return m_measurement.get(); }
    RemoteIndicatorControlConfigInfo* GetRemoteIndicatorControlConfigInfo() const { return m_remoteIndicator.get(); }
    SystemControlConfigInfo* GetSystemControlConfigInfo() const { return m_systemControl.get(); }
    SystemMonitoringConfigInfo* GetSystemMonitoringConfigInfo() const { return m_systemMonitor.get(); }
    TestInterfaceConfigInfo* GetTestInterfaceConfigInfo() const { return m_testInterface.get(); }

    // For required sections: a missing one ends the process with a line that names it.
    GlobalConfigInfo& RequireGlobalConfigInfo() const;
    TestInterfaceConfigInfo& RequireTestInterfaceConfigInfo() const;

private:
    template <class Section>
    void ReadSection(std::unique_ptr<Section>& section, const char* elementName, const char* className);

    StdString m_path = "settings";
    std::unique_ptr<XmlDocument> m_ownedDocument;
    std::unique_ptr<DeviceMonitorConfigInfo> m_deviceMonitor;
    std::unique_ptr<GlobalConfigInfo> m_general;
    std::unique_ptr<LoggingConfigInfo> m_logging;
    std::unique_ptr<MeasurementEngineConfigInfo> m_measurement;
    std::unique_ptr<MessagingEngineConfigInfo> m_messaging;
    std::unique_ptr<RemoteIndicatorControlConfigInfo> m_remoteIndicator;
    std::unique_ptr<SystemControlConfigInfo> m_systemControl;
    std::unique_ptr<SystemMonitoringConfigInfo> m_systemMonitor;
    std::unique_ptr<TestInterfaceConfigInfo> m_testInterface;
    std::unique_ptr<WebDataInterfaceConfigInfo> m_web;
    std::unique_ptr<ConfigurationBase> m_reserved[2];  // for future sections
};
