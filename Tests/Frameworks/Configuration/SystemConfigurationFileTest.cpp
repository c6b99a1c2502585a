#include "Frameworks/Configuration/SystemConfigurationFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "Frameworks/Configuration/SingletonBase.h"
#include "Tests/Frameworks/Configuration/SettingsText.h"
#include "Tests/Support/ReportedLines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct SectionRow {
    const char* element;
    const char* className;
};

// In the order of reading.
constexpr SectionRow Sections[] = {
    {"GENERAL_INFO", "GlobalConfigInfo"},
    {"DEVICE_MONITOR_INFO", "DeviceMonitorConfigInfo"},
    {"LOGGING_INFO", "LoggingConfigInfo"},
    {"MEASUREMENT_ENGINE_INFO", "MeasurementEngineConfigInfo"},
    {"MESSAGING_ENGINE_INFO", "MessagingEngineConfigInfo"},
    {"REMOTE_INDICATOR_INFO", "RemoteIndicatorControlConfigInfo"},
    {"SYSTEM_CONTROL_INFO", "SystemControlConfigInfo"},
    {"SYSTEM_MONITOR_INFO", "SystemMonitoringConfigInfo"},
    {"TEST_INTERFACE_INFO", "TestInterfaceConfigInfo"},
    {"WEB_INTERFACE_INFO", "WebDataInterfaceConfigInfo"},
};

std::string UnableToCreate(const std::string& className) {
    return "SystemConfigurationFile::GetXML Unable to create " + className + " Item";
}

// A section with its name as the value of the key "Name".
std::string Section(const std::string& element) {
    std::string content = Item("Name", element);
    if (element == "MEASUREMENT_ENGINE_INFO") {
        content += StepList(StepOrder() + Step("HomePosition"));
    }
    return Element(element, content);
}

std::string AllSectionsBut(const std::string& left = "") {
    std::string text;
    for (const SectionRow& row : Sections) {
        text += row.element == left ? "" : Section(row.element);
    }
    return text;
}

class SettingsFile : public testing::Test {
protected:
    bool Load(const std::string& text) { return m_file.Load(m_folder.Write("analyzer.conf.xml", text).c_str()); }
    bool LoadAndRead(const std::string& sections) {
        return Load(Element("ROOT_ANALYZER", sections)) && m_file.GetXML();
    }

    static std::string Name(const ConfigurationBase* section) {
        return section == nullptr ? "no section" : section->GetValueOr("Name", "no key").Text();
    }

    // The section of each getter, by its element.
    std::map<std::string, const ConfigurationBase*> Reached() const {
        return {{"GENERAL_INFO", m_file.GetGlobalConfigInfo()},
                {"LOGGING_INFO", m_file.GetLoggingConfigInfo()},
                {"MEASUREMENT_ENGINE_INFO", m_file.GetMeasurementEngineConfigInfo()},
                {"REMOTE_INDICATOR_INFO", m_file.GetRemoteIndicatorControlConfigInfo()},
                {"SYSTEM_CONTROL_INFO", m_file.GetSystemControlConfigInfo()},
                {"SYSTEM_MONITOR_INFO", m_file.GetSystemMonitoringConfigInfo()},
                {"TEST_INTERFACE_INFO", m_file.GetTestInterfaceConfigInfo()}};
    }

    ReportedLines m_lines;
    TemporaryFolder m_folder;
    SystemConfigurationFile m_file;
};

}  // namespace

TEST_F(SettingsFile, that_is_absent_does_not_load_and_nothing_is_logged) {
    EXPECT_FALSE(m_file.Load((m_folder.Path() + "/absent.xml").c_str()));
    EXPECT_EQ(m_file.GetDocument(), nullptr);
    EXPECT_FALSE(m_file.GetXML());
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(SettingsFile, that_is_not_well_formed_does_not_load_and_nothing_is_logged) {
    EXPECT_FALSE(Load("<ROOT_ANALYZER><GENERAL_INFO></ROOT_ANALYZER>"));
    EXPECT_EQ(m_file.GetDocument(), nullptr);
    EXPECT_FALSE(m_file.GetXML());
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(SettingsFile, that_is_empty_does_not_load) { EXPECT_FALSE(Load("")); }

TEST_F(SettingsFile, with_another_root_loads_and_is_not_read) {
    ASSERT_TRUE(Load(Element("ROOT_USER", AllSectionsBut())));
    EXPECT_FALSE(m_file.GetXML());
    for (const auto& [element, section] : Reached()) {
        EXPECT_EQ(section, nullptr) << element;
    }
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(SettingsFile, gives_each_getter_its_section) {
    ASSERT_TRUE(LoadAndRead(AllSectionsBut()));
    for (const auto& [element, section] : Reached()) {
        EXPECT_EQ(Name(section), element);
    }
    EXPECT_NE(m_file.GetMeasurementEngineConfigInfo()->GetMeasurementSteps()->GetItemContainer("HomePosition"),
              nullptr);
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(SettingsFile, finds_its_sections_in_any_order) {
    std::string text;
    for (const SectionRow& row : Sections) {
        text = Section(row.element) + text;
    }
    ASSERT_TRUE(LoadAndRead(text));
    for (const auto& [element, section] : Reached()) {
        EXPECT_EQ(Name(section), element);
    }
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

class SettingsFileWithout : public SettingsFile, public testing::WithParamInterface<SectionRow> {};

INSTANTIATE_TEST_SUITE_P(, SettingsFileWithout, testing::ValuesIn(Sections),
                         [](const auto& row) { return std::string(row.param.element); });

TEST_P(SettingsFileWithout, one_section_is_read_and_reports_it_alone) {
    const SectionRow& row = GetParam();
    EXPECT_TRUE(LoadAndRead(AllSectionsBut(row.element)));
    for (const auto& [element, section] : Reached()) {
        EXPECT_EQ(Name(section), element == row.element ? "no section" : element);
    }
    EXPECT_THAT(m_lines.Texts(), ElementsAre(UnableToCreate(row.className)));
}

TEST_F(SettingsFile, with_only_a_root_reports_each_section) {
    EXPECT_TRUE(LoadAndRead(""));
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("SystemConfigurationFile::GetXML Unable to create GlobalConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create DeviceMonitorConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create LoggingConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create MeasurementEngineConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create MessagingEngineConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create RemoteIndicatorControlConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create SystemControlConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create SystemMonitoringConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create TestInterfaceConfigInfo Item",
                            "SystemConfigurationFile::GetXML Unable to create WebDataInterfaceConfigInfo Item"));
}

TEST_F(SettingsFile, with_an_empty_step_list_drops_only_the_measurement_section) {
    EXPECT_TRUE(LoadAndRead(Element("MEASUREMENT_ENGINE_INFO", Item("Name", "x") + "<MEASUREMENT_STEP_LIST/>") +
                            AllSectionsBut("MEASUREMENT_ENGINE_INFO")));
    for (const auto& [element, section] : Reached()) {
        EXPECT_EQ(Name(section), element == "MEASUREMENT_ENGINE_INFO" ? "no section" : element);
    }
    EXPECT_THAT(m_lines.Texts(), ElementsAre(UnableToCreate("MeasurementEngineConfigInfo")));
}

TEST_F(SettingsFile, with_the_step_order_after_a_step_drops_only_the_measurement_section) {
    EXPECT_TRUE(LoadAndRead(Element("MEASUREMENT_ENGINE_INFO", StepList(Step("Light") + StepOrder() + Step("Mixing"))) +
                            AllSectionsBut("MEASUREMENT_ENGINE_INFO")));
    EXPECT_EQ(m_file.GetMeasurementEngineConfigInfo(), nullptr);
    EXPECT_EQ(Name(m_file.GetTestInterfaceConfigInfo()), "TEST_INTERFACE_INFO");
    EXPECT_THAT(m_lines.Texts(), ElementsAre(UnableToCreate("MeasurementEngineConfigInfo")));
}

TEST_F(SettingsFile, of_two_sections_with_one_name_the_first_counts) {
    ASSERT_TRUE(
        LoadAndRead(Element("GENERAL_INFO", Item("Name", "first")) + Element("GENERAL_INFO", Item("Name", "second"))));
    EXPECT_EQ(Name(m_file.GetGlobalConfigInfo()), "first");
}

TEST_F(SettingsFile, keeps_its_content_if_another_file_does_not_load) {
    ASSERT_TRUE(LoadAndRead(AllSectionsBut()));
    EXPECT_FALSE(m_file.Load((m_folder.Path() + "/absent.xml").c_str()));
    EXPECT_EQ(Name(m_file.GetGlobalConfigInfo()), "GENERAL_INFO");
    EXPECT_NE(m_file.GetDocument(), nullptr);
}

TEST_F(SettingsFile, read_again_holds_the_new_values) {
    ASSERT_TRUE(LoadAndRead(Element("GENERAL_INFO", Item("Name", "old"))));
    ASSERT_TRUE(LoadAndRead(Element("GENERAL_INFO", Item("Name", "new"))));
    EXPECT_EQ(Name(m_file.GetGlobalConfigInfo()), "new");
    EXPECT_TRUE(m_file.GetXML());
    EXPECT_EQ(Name(m_file.GetGlobalConfigInfo()), "new");
}

TEST_F(SettingsFile, cleaned_up_holds_neither_sections_nor_document) {
    ASSERT_TRUE(LoadAndRead(AllSectionsBut()));
    m_file.Cleanup();
    EXPECT_EQ(m_file.GetDocument(), nullptr);
    for (const auto& [element, section] : Reached()) {
        EXPECT_EQ(section, nullptr) << element;
    }
    EXPECT_FALSE(m_file.GetXML());
    m_file.Cleanup();
}

TEST_F(SettingsFile, is_not_changed_by_reading) {
    const std::string text = Element("ROOT_ANALYZER", AllSectionsBut());
    ASSERT_TRUE(Load(text));
    ASSERT_TRUE(m_file.GetXML());
    std::ostringstream kept;
    kept << std::ifstream(m_folder.Path() + "/analyzer.conf.xml").rdbuf();
    EXPECT_EQ(kept.str(), text);
}

TEST_F(SettingsFile, takes_the_defaults_of_the_test_link_for_missing_keys) {
    ASSERT_TRUE(LoadAndRead(Element("TEST_INTERFACE_INFO", "") + Element("GENERAL_INFO", "")));
    EXPECT_EQ(m_file.RequireTestInterfaceConfigInfo().GetValueOr("TestServerPortNumber", "1200"), "1200");
    EXPECT_EQ(m_file.RequireTestInterfaceConfigInfo().GetValueOr("ConnectionRetryCount", "1").ToInteger(), 1);
    EXPECT_EQ(m_file.RequireGlobalConfigInfo().GetValueOr("SerialNumber", "InvalidSerialNumber"),
              "InvalidSerialNumber");
}

using SettingsFileDeathTest = SettingsFile;

TEST_F(SettingsFileDeathTest, a_missing_key_is_named_with_file_and_section) {
    ASSERT_TRUE(LoadAndRead(AllSectionsBut()));
    EXPECT_DEATH(m_file.GetLoggingConfigInfo()->RequireValue("LoggingLevel"),
                 "/analyzer\\.conf\\.xml: section LOGGING_INFO has no key LoggingLevel\n");
    EXPECT_DEATH(m_file.GetMeasurementEngineConfigInfo()->RequireValue("PrimeCycleCount"),
                 "/analyzer\\.conf\\.xml: section MEASUREMENT_ENGINE_INFO has no key PrimeCycleCount\n");
}

TEST_F(SettingsFileDeathTest, a_missing_required_section_is_named_with_its_file) {
    ASSERT_TRUE(LoadAndRead(""));
    EXPECT_DEATH(m_file.RequireGlobalConfigInfo(),
                 "/analyzer\\.conf\\.xml: section GENERAL_INFO is missing or can't be read\n");
    EXPECT_DEATH(m_file.RequireTestInterfaceConfigInfo(),
                 "/analyzer\\.conf\\.xml: section TEST_INTERFACE_INFO is missing or can't be read\n");
}

class ProcessSettings : public SettingsFile {
protected:
    ~ProcessSettings() override {
        SingletonBase::SetSystemConfiguration(nullptr);
        SingletonBase::SetUserConfiguration(nullptr);
    }
};

TEST_F(ProcessSettings, are_none_at_start) {
    EXPECT_EQ(SingletonBase::GetSystemConfiguration(), nullptr);
    EXPECT_EQ(SingletonBase::GetUserConfiguration(), nullptr);
}

TEST_F(ProcessSettings, are_those_that_were_set_last) {
    auto first = std::make_unique<SystemConfigurationFile>();
    auto second = std::make_unique<SystemConfigurationFile>();
    const SystemConfigurationFile* last = second.get();
    EXPECT_TRUE(SingletonBase::SetSystemConfiguration(std::move(first)));
    EXPECT_TRUE(SingletonBase::SetSystemConfiguration(std::move(second)));
    EXPECT_EQ(SingletonBase::GetSystemConfiguration(), last);
}

TEST_F(ProcessSettings, set_to_null_are_none) {
    SingletonBase::SetSystemConfiguration(std::make_unique<SystemConfigurationFile>());
    EXPECT_FALSE(SingletonBase::SetSystemConfiguration(nullptr));
    EXPECT_EQ(SingletonBase::GetSystemConfiguration(), nullptr);
}

TEST_F(ProcessSettings, of_the_user_are_kept_separately) {
    EXPECT_TRUE(SingletonBase::SetUserConfiguration(std::make_unique<UserConfigurationFile>()));
    EXPECT_NE(SingletonBase::GetUserConfiguration(), nullptr);
    EXPECT_EQ(SingletonBase::GetSystemConfiguration(), nullptr);
    EXPECT_FALSE(SingletonBase::SetUserConfiguration(nullptr));
    EXPECT_EQ(SingletonBase::GetUserConfiguration(), nullptr);
}

TEST_F(ProcessSettings, are_not_touched_by_a_user_file_beside_them) {
    m_folder.Write("configuration/user.conf.xml",
                   Element("ROOT_USER", Element("USER_CONFIG_INFO", Item("Name", "user"))));
    m_folder.Write("user.conf.xml", Element("ROOT_ANALYZER", Element("GENERAL_INFO", Item("Name", "user"))));
    auto file = std::make_unique<SystemConfigurationFile>();
    ASSERT_TRUE(file->Load(m_folder.Write("analyzer.conf.xml", Element("ROOT_ANALYZER", AllSectionsBut())).c_str()));
    SingletonBase::SetSystemConfiguration(std::move(file));
    ASSERT_TRUE(SingletonBase::GetSystemConfiguration()->GetXML());
    EXPECT_EQ(Name(SingletonBase::GetSystemConfiguration()->GetGlobalConfigInfo()), "GENERAL_INFO");
    EXPECT_EQ(SingletonBase::GetUserConfiguration(), nullptr);
}
