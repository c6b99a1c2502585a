#include "Frameworks/Configuration/SystemConfigurationFile.h"

#include "Frameworks/Configuration/MissingSetting.h"
#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr const char* GeneralName = "GENERAL_INFO";
constexpr const char* TestInterfaceName = "TEST_INTERFACE_INFO";

}  // namespace

SystemConfigurationFile::SystemConfigurationFile() = default;

SystemConfigurationFile::~SystemConfigurationFile() { Cleanup(); }

bool SystemConfigurationFile::Load(const StdString& path) {
    auto document = std::make_unique<XmlDocument>();
    if (!document->Load(path.CString()) || !document->IsWellFormed()) {
        return false;
    }
    Cleanup();
    m_path = path;
    m_ownedDocument = std::move(document);
    SetDocument(m_ownedDocument.get());
    return true;
}

bool SystemConfigurationFile::GetXML() {
    XmlDocument* document = GetDocument();
    if (document == nullptr) {
        return false;
    }
    document->ResetPosition();
    if (!document->FindElement(AnalyzerRootName) || !document->IntoElement()) {
        return false;
    }
    ReadSection(m_general, GeneralName, "GlobalConfigInfo");
    ReadSection(m_deviceMonitor, "DEVICE_MONITOR_INFO", "DeviceMonitorConfigInfo");
    ReadSection(m_logging, "LOGGING_INFO", "LoggingConfigInfo");
    ReadSection(m_measurement, "MEASUREMENT_ENGINE_INFO", "MeasurementEngineConfigInfo");
    ReadSection(m_messaging, "MESSAGING_ENGINE_INFO", "MessagingEngineConfigInfo");
    ReadSection(m_remoteIndicator, "REMOTE_INDICATOR_INFO", "RemoteIndicatorControlConfigInfo");
    ReadSection(m_systemControl, "SYSTEM_CONTROL_INFO", "SystemControlConfigInfo");
    ReadSection(m_systemMonitor, "SYSTEM_MONITOR_INFO", "SystemMonitoringConfigInfo");
    ReadSection(m_testInterface, TestInterfaceName, "TestInterfaceConfigInfo");
    ReadSection(m_web, "WEB_INTERFACE_INFO", "WebDataInterfaceConfigInfo");
    return document->OutOfElement();
}

template <class Section>
void SystemConfigurationFile::ReadSection(std::unique_ptr<Section>& section, const char* elementName,
                                          const char* className) {
    section = std::make_unique<Section>();
    GetDocument()->ResetMainPosition();
    section->SetDocument(GetDocument());
    section->SetSource(m_path);
    if (!section->GetXML(elementName)) {
        section.reset();
        ReportError(StdString("SystemConfigurationFile::GetXML Unable to create ") + className + " Item",
                    SYSTEM_CONTROL);
    }
}

void SystemConfigurationFile::Cleanup() {
    m_deviceMonitor.reset();
    m_general.reset();
    m_logging.reset();
    m_measurement.reset();
    m_messaging.reset();
    m_remoteIndicator.reset();
    m_systemControl.reset();
    m_systemMonitor.reset();
    m_testInterface.reset();
    m_web.reset();
    for (auto& section : m_reserved) {
        section.reset();
    }
    m_ownedDocument.reset();
    SetDocument(nullptr);
}

GlobalConfigInfo& SystemConfigurationFile::RequireGlobalConfigInfo() const {
    if (m_general == nullptr) {
        EndForMissingSection(m_path, GeneralName);
    }
    return *m_general;
}

TestInterfaceConfigInfo& SystemConfigurationFile::RequireTestInterfaceConfigInfo() const {
    if (m_testInterface == nullptr) {
        EndForMissingSection(m_path, TestInterfaceName);
    }
    return *m_testInterface;
}
