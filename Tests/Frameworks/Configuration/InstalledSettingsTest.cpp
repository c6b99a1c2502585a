// Compares the installed settings file with the keys that the system reads.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "Frameworks/Configuration/SystemConfigurationFile.h"
#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Support/ReportedLines.h"

namespace {

constexpr const char* SettingsPath = SOURCE_FOLDER "/configuration/analyzer.conf.xml";

struct KeyRow {
    const char* key;
    const char* section;
};

constexpr KeyRow Keys[] = {
    {"SerialNumber", "GENERAL_INFO"},
    {"DeviceID", "GENERAL_INFO"},
    {"LoggingLevel", "LOGGING_INFO"},
    {"LogMeasurementData", "LOGGING_INFO"},
    {"LogMeasurementDataFileFormat", "LOGGING_INFO"},
    {"LogMeasurementStepData", "LOGGING_INFO"},
    {"LogMeasurementStepDataFileFormat", "LOGGING_INFO"},
    {"LogStatusData", "LOGGING_INFO"},
    {"LogStatusDataFileFormat", "LOGGING_INFO"},
    {"LogDataFilePath", "LOGGING_INFO"},
    {"LogMeasurementDataFileName", "LOGGING_INFO"},
    {"LogMeasurementStepDataFileName", "LOGGING_INFO"},
    {"LogStatusDataFileName", "LOGGING_INFO"},
    {"PrimeCycleCount", "MEASUREMENT_ENGINE_INFO"},
    {"EmitterChannel", "MEASUREMENT_ENGINE_INFO"},
    {"EmitterDefaultFrequency", "MEASUREMENT_ENGINE_INFO"},
    {"EmitterDefaultDutyCycle", "MEASUREMENT_ENGINE_INFO"},
    {"ColorimeterCellConstant", "MEASUREMENT_ENGINE_INFO"},
    {"SampleSwitchDelay", "MEASUREMENT_ENGINE_INFO"},
    {"SampleSwitchDutyCycle", "MEASUREMENT_ENGINE_INFO"},
    {"FindHomeSpeed", "MEASUREMENT_ENGINE_INFO"},
    {"DarkHighRejectNum", "MEASUREMENT_ENGINE_INFO"},
    {"DarkLowRejectNum", "MEASUREMENT_ENGINE_INFO"},
    {"RefHighRejectNum", "MEASUREMENT_ENGINE_INFO"},
    {"RefLowRejectNum", "MEASUREMENT_ENGINE_INFO"},
    {"SampleHighRejectNum", "MEASUREMENT_ENGINE_INFO"},
    {"SampleLowRejectNum", "MEASUREMENT_ENGINE_INFO"},
    {"DetectorOutputLevel", "MEASUREMENT_ENGINE_INFO"},
    {"DetectorOutputLevelDev", "MEASUREMENT_ENGINE_INFO"},
    {"LEDDutycycleAdjustStep", "MEASUREMENT_ENGINE_INFO"},
    {"LEDSettleTime", "MEASUREMENT_ENGINE_INFO"},
    {"AlertFileName", "REMOTE_INDICATOR_INFO"},
    {"AlarmFileName", "REMOTE_INDICATOR_INFO"},
    {"AlertFileGapBetweenPlay", "REMOTE_INDICATOR_INFO"},
    {"AlarmFileGapBetweenPlay", "REMOTE_INDICATOR_INFO"},
    {"LoopCurrentSenseResistance", "REMOTE_INDICATOR_INFO"},
    {"LoopVoltageAmpGain", "REMOTE_INDICATOR_INFO"},
    {"BlueLEDForwardVoltageDrop", "REMOTE_INDICATOR_INFO"},
    {"CableResistancePerFoot", "REMOTE_INDICATOR_INFO"},
    {"DefaultMeasurementTimeout", "SYSTEM_CONTROL_INFO"},
    {"UserConfigFileLocation", "SYSTEM_CONTROL_INFO"},
    {"AutoStartMeasurement", "SYSTEM_CONTROL_INFO"},
    {"AutoStartDelay", "SYSTEM_CONTROL_INFO"},
    {"AlarmLevel", "SYSTEM_MONITOR_INFO"},
    {"AlertLevel", "SYSTEM_MONITOR_INFO"},
    {"AckTimeout", "SYSTEM_MONITOR_INFO"},
    {"TestServerIPAddress", "TEST_INTERFACE_INFO"},
    {"TestServerName", "TEST_INTERFACE_INFO"},
    {"TestServerPortNumber", "TEST_INTERFACE_INFO"},
    {"ConnectionRetryCount", "TEST_INTERFACE_INFO"},
    {"ConnectionRetryWaitPeriod", "TEST_INTERFACE_INFO"},
    {"EthernetInterfaceName", "TEST_INTERFACE_INFO"},
    {"StartInTestMode", "TEST_INTERFACE_INFO"},
};

constexpr const char* SectionsWithoutKeys[] = {"DEVICE_MONITOR_INFO", "MESSAGING_ENGINE_INFO", "WEB_INTERFACE_INFO"};

constexpr const char* Steps[] = {
    "HomePosition",
    "DarkCountMeasurement",
    "NoLight",
    "VerifyFlow",
    "SampleFlushDelivery",
    "SettlingTime",
    "LEDAdjustment",
    "ReferenceOpticalMeasurement",
    "OptionalMitigation",
    "ReferenceSRDVMeasurement",
    "PreMixStiring",
    "ReagentStaging",
    "ReagentAddition",
    "Light",
    "Mixing",
    "Debubbling",
    "SampleOpticalMeasurement",
    "SampleSRDVMeasurement",
    "SanityCheck",
};

constexpr const char* StepItems[] = {
    "Step",        "Duration",    "LED On", "Stirring On", "Sample Valve On", "ADC Monitor On", "Find Start Position",
    "Motor Angle", "Motor Speed",
};

class InstalledSettings : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_document.Load(SettingsPath)) << SettingsPath << ": " << m_document.GetResultText();
        ASSERT_TRUE(m_document.FindElement("ROOT_ANALYZER"));
        ASSERT_TRUE(m_document.IntoElement());
    }

    // One attribute of each child of that name of the current element, duplicates included.
    std::vector<std::string> Children(const char* name, const char* attribute) {
        std::vector<std::string> found;
        EXPECT_TRUE(m_document.IntoElement());
        m_document.ResetMainPosition();
        while (m_document.FindElement(name)) {
            found.push_back(m_document.GetAttribute(attribute));
        }
        EXPECT_TRUE(m_document.OutOfElement());
        return found;
    }

    XmlDocument m_document;
};

}  // namespace

TEST_F(InstalledSettings, hold_each_key_in_its_section_once_and_no_other) {
    std::multiset<std::string> expected;
    for (const KeyRow& row : Keys) {
        expected.insert(std::string(row.section) + " " + row.key);
    }
    std::multiset<std::string> found;
    while (m_document.FindElement()) {
        for (const std::string& key : Children("INFO_ITEM", "name")) {
            found.insert(m_document.GetTagName() + " " + key);
        }
    }
    EXPECT_EQ(found, expected);
}

TEST_F(InstalledSettings, hold_each_section_once_and_no_other) {
    std::multiset<std::string> expected(std::begin(SectionsWithoutKeys), std::end(SectionsWithoutKeys));
    for (const KeyRow& row : Keys) {
        if (expected.count(row.section) == 0) {
            expected.insert(row.section);
        }
    }
    std::multiset<std::string> found;
    while (m_document.FindElement()) {
        found.insert(m_document.GetTagName());
    }
    EXPECT_EQ(found, expected);
}

TEST_F(InstalledSettings, give_every_item_its_five_attributes) {
    while (m_document.FindElement()) {
        for (const char* attribute : {"name", "type", "value", "description", "unitOfMeasure"}) {
            for (const std::string& text : Children("INFO_ITEM", attribute)) {
                EXPECT_TRUE(!text.empty() || std::string(attribute) == "value")
                    << m_document.GetTagName() << ": an item without " << attribute;
            }
        }
    }
}

TEST_F(InstalledSettings, hold_all_nineteen_steps_in_order_with_their_nine_items) {
    ASSERT_TRUE(m_document.FindElement("MEASUREMENT_ENGINE_INFO"));
    ASSERT_TRUE(m_document.IntoElement());
    ASSERT_TRUE(m_document.FindElement("MEASUREMENT_STEP_LIST"));
    ASSERT_TRUE(m_document.IntoElement());
    ASSERT_TRUE(m_document.FindElement("MEASUREMENT_STEP_ORDER"));
    EXPECT_THAT(Children("INFO_ITEM", "value"), testing::ElementsAreArray(Steps));
    for (const char* step : Steps) {
        ASSERT_TRUE(m_document.FindElement("MEASUREMENT_STEP")) << step;
        EXPECT_THAT(Children("INFO_ITEM", "name"), testing::UnorderedElementsAreArray(StepItems)) << step;
        EXPECT_THAT(Children("INFO_ITEM", "value"), testing::Contains(step));
    }
    EXPECT_FALSE(m_document.FindElement("MEASUREMENT_STEP"));
}

TEST_F(InstalledSettings, load_without_a_report_and_give_every_key_to_its_reader) {
    const ReportedLines lines;
    SystemConfigurationFile file;
    ASSERT_TRUE(file.Load(SettingsPath));
    ASSERT_TRUE(file.GetXML());
    EXPECT_THAT(lines.Texts(), testing::IsEmpty());
    const std::map<std::string, const ConfigurationBase*> sections = {
        {"GENERAL_INFO", file.GetGlobalConfigInfo()},
        {"LOGGING_INFO", file.GetLoggingConfigInfo()},
        {"MEASUREMENT_ENGINE_INFO", file.GetMeasurementEngineConfigInfo()},
        {"REMOTE_INDICATOR_INFO", file.GetRemoteIndicatorControlConfigInfo()},
        {"SYSTEM_CONTROL_INFO", file.GetSystemControlConfigInfo()},
        {"SYSTEM_MONITOR_INFO", file.GetSystemMonitoringConfigInfo()},
        {"TEST_INTERFACE_INFO", file.GetTestInterfaceConfigInfo()}};
    for (const KeyRow& row : Keys) {
        EXPECT_NE(sections.at(row.section)->GetItem(row.key), nullptr) << row.section << " " << row.key;
    }
    for (const char* step : Steps) {
        const ItemInfoContainer* items =
            file.GetMeasurementEngineConfigInfo()->GetMeasurementSteps()->GetItemContainer(step);
        ASSERT_NE(items, nullptr) << step;
        for (const char* item : StepItems) {
            EXPECT_NE(items->GetItem(item), nullptr) << step << " " << item;
        }
    }
}
