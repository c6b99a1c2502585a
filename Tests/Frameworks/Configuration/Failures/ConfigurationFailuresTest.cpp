#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>

#include <cstdarg>
#include <cstdio>

#include "Frameworks/Configuration/SystemConfigurationFile.h"
#include "Frameworks/Configuration/UserConfigurationFile.h"
#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Frameworks/Configuration/Failures/ScriptedXmlDocument.h"
#include "Tests/Support/ReportedLines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const char* logIdentity = "";

}  // namespace

// The system log of this program is its error stream, one line per entry.
extern "C" {
void openlog(const char* identity, int, int) { logIdentity = identity; }
void closelog() {}
void syslog(int priority, const char* format, ...) {
    std::fprintf(stderr, "<%d>%s: ", priority, logIdentity);
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputs("\n", stderr);
}
void __syslog_chk(int priority, int, const char* format, ...) {
    std::fprintf(stderr, "<%d>%s: ", priority, logIdentity);
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputs("\n", stderr);
}
}

namespace {

class FailingDocument : public testing::Test {
protected:
    FailingDocument() {
        DocumentScript::Get() = {};
        m_item.SetName("N");
        m_item.SetType("T");
        m_item.SetValue("V");
        m_item.SetDescription("D");
        m_item.SetUnitOfMeasure("U");
        m_base.SetDocument(&m_document);
        m_measurement.SetDocument(&m_document);
    }

    static void Fail(const std::string& call) { DocumentScript::Get().failing.insert(call); }
    static const std::vector<std::string>& Calls() { return DocumentScript::Get().calls; }

    bool Write() { return m_base.SetXML("S", &m_item); }

    ReportedLines m_lines;
    XmlDocument m_document;
    ItemInfoElement m_item;
    ConfigurationBase m_base;
    MeasurementEngineConfigInfo m_measurement;
};

}  // namespace

TEST_F(FailingDocument, writing_makes_these_calls) {
    Fail("FindElement INFO_ITEM#2");
    EXPECT_TRUE(Write());
    EXPECT_THAT(Calls(), ElementsAre("ResetPosition", "FindElement ROOT_ANALYZER", "IntoElement", "FindElement S",
                                     "IntoElement", "FindElement INFO_ITEM", "FindElement INFO_ITEM",
                                     "AddElement INFO_ITEM 0", "SetAttribute name=N", "SetAttribute type=T",
                                     "SetAttribute value=V", "SetAttribute description=D",
                                     "SetAttribute unitOfMeasure=U", "OutOfElement", "OutOfElement"));
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(FailingDocument, a_root_that_cannot_be_entered_is_reported) {
    Fail("IntoElement#1");
    EXPECT_FALSE(Write());
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("ConfigurationBase::SetXML  Unable to move in to element \"ROOT_ANALYZER\""));
    EXPECT_THAT(Calls(), ElementsAre("ResetPosition", "FindElement ROOT_ANALYZER", "IntoElement"));
}

TEST_F(FailingDocument, a_section_that_cannot_be_entered_is_one_double_quote) {
    Fail("IntoElement#2");
    EXPECT_FALSE(Write());
    EXPECT_THAT(m_lines.Texts(), ElementsAre("\""));
    EXPECT_EQ(Calls().back(), "OutOfElement");
}

TEST_F(FailingDocument, an_item_that_cannot_be_removed_is_reported_and_written) {
    m_item.SetName("name");  // the value of the attribute in this document
    Fail("RemoveElement");
    EXPECT_TRUE(Write());
    EXPECT_THAT(m_lines.Texts(), ElementsAre("ConfigurationBase::SetXML  Unable to remove element"));
    EXPECT_THAT(Calls(), testing::Contains("AddElement INFO_ITEM 0"));
}

TEST_F(FailingDocument, an_item_that_cannot_be_added_logs_one_double_quote) {
    Fail("FindElement INFO_ITEM");
    Fail("AddElement INFO_ITEM 0");
    EXPECT_TRUE(Write());
    EXPECT_THAT(m_lines.Texts(), ElementsAre("\""));
    EXPECT_THAT(Calls(),
                ElementsAre("ResetPosition", "FindElement ROOT_ANALYZER", "IntoElement", "FindElement S", "IntoElement",
                            "FindElement INFO_ITEM", "AddElement INFO_ITEM 0", "OutOfElement", "OutOfElement"));
}

TEST_F(FailingDocument, each_attribute_that_cannot_be_set_is_reported) {
    Fail("FindElement INFO_ITEM");
    for (const char* call : {"SetAttribute name=N", "SetAttribute type=T", "SetAttribute value=V",
                             "SetAttribute description=D", "SetAttribute unitOfMeasure=U"}) {
        Fail(call);
    }
    EXPECT_TRUE(Write());
    EXPECT_THAT(m_lines.Texts(), ElementsAre("ConfigurationBase::SetXML  Unable to add attribute \"name\"",
                                             "ConfigurationBase::SetXML  Unable to add attribute \"type\"",
                                             "ConfigurationBase::SetXML  Unable to add attribute \"value\"",
                                             "ConfigurationBase::SetXML  Unable to add attribute \"description\"",
                                             "ConfigurationBase::SetXML  Unable to add attribute \"unitOfMeasure\""));
}

TEST_F(FailingDocument, a_section_that_cannot_be_left_fails_the_write) {
    Fail("FindElement INFO_ITEM");
    Fail("OutOfElement#1");
    EXPECT_FALSE(Write());
    EXPECT_THAT(m_lines.Texts(), ElementsAre("\""));
}

TEST_F(FailingDocument, a_root_that_cannot_be_left_is_only_reported) {
    Fail("FindElement INFO_ITEM");
    Fail("OutOfElement#2");
    EXPECT_TRUE(Write());
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("ConfigurationBase::SetXML  Unable to move out of element \"ROOT_ANALYZER\""));
}

TEST_F(FailingDocument, the_measurement_section_writes_the_same_way) {
    m_item.SetName("name");
    for (const char* call : {"RemoveElement", "SetAttribute name=name", "SetAttribute type=T", "SetAttribute value=V",
                             "SetAttribute description=D", "SetAttribute unitOfMeasure=U", "OutOfElement#2"}) {
        Fail(call);
    }
    EXPECT_TRUE(m_measurement.SetXML("S", &m_item));
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("MeasurementEngineConfigInfo::SetXML  Unable to remove element",
                            "MeasurementEngineConfigInfo::SetXML  Unable to add attribute \"name\"",
                            "MeasurementEngineConfigInfo::SetXML  Unable to add attribute \"type\"",
                            "MeasurementEngineConfigInfo::SetXML  Unable to add attribute \"value\"",
                            "MeasurementEngineConfigInfo::SetXML  Unable to add attribute \"description\"",
                            "MeasurementEngineConfigInfo::SetXML  Unable to add attribute \"unitOfMeasure\"",
                            "MeasurementEngineConfigInfo::SetXML  Unable to move out of element \"ROOT_ANALYZER\""));
}

TEST_F(FailingDocument, the_measurement_section_reports_a_root_that_cannot_be_entered) {
    Fail("IntoElement");
    EXPECT_FALSE(m_measurement.SetXML("S", &m_item));
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("MeasurementEngineConfigInfo::SetXML  Unable to move in to element \"ROOT_ANALYZER\""));
}

TEST_F(FailingDocument, the_measurement_section_logs_a_failed_section_as_one_double_quote) {
    for (const char* call : {"FindElement S", "IntoElement#2", "AddElement INFO_ITEM 0", "OutOfElement#1"}) {
        DocumentScript::Get() = {};
        Fail("FindElement INFO_ITEM");
        Fail(call);
        const ReportedLines lines;
        m_measurement.SetXML("S", &m_item);
        EXPECT_THAT(lines.Texts(), ElementsAre("\"")) << call;
    }
}

TEST_F(FailingDocument, a_section_that_cannot_be_entered_is_not_read) {
    Fail("IntoElement");
    EXPECT_FALSE(m_base.GetXML("S"));
    EXPECT_NE(m_base.GetItems(), nullptr);
    EXPECT_THAT(Calls(), ElementsAre("FindElement S", "IntoElement"));
}

TEST_F(FailingDocument, a_section_that_cannot_be_left_is_not_read) {
    Fail("FindElement INFO_ITEM#2");
    Fail("OutOfElement");
    EXPECT_FALSE(m_base.GetXML("S"));
    EXPECT_NE(m_base.GetItem("name"), nullptr);
}

TEST_F(FailingDocument, a_measurement_section_needs_every_element_entered_and_left) {
    // Entered and left: the section for its items, then again, the step list, the order list, the one step.
    for (const char* call :
         {"IntoElement#1", "IntoElement#2", "IntoElement#3", "IntoElement#4", "IntoElement#5", "OutOfElement#1",
          "OutOfElement#2", "OutOfElement#3", "OutOfElement#4", "OutOfElement#5", "none"}) {
        DocumentScript::Get() = {};
        Fail("FindElement INFO_ITEM#1");
        Fail("FindElement INFO_ITEM#3");
        Fail("FindElement INFO_ITEM#5");
        Fail("FindElement MEASUREMENT_STEP#2");
        Fail(call);
        MeasurementEngineConfigInfo section;
        section.SetDocument(&m_document);
        EXPECT_EQ(section.GetXML("S"), std::string(call) == "none") << call;
    }
}

TEST_F(FailingDocument, a_step_that_cannot_be_entered_is_skipped) {
    Fail("FindElement INFO_ITEM#1");
    Fail("FindElement INFO_ITEM#3");
    Fail("FindElement INFO_ITEM#5");
    Fail("FindElement MEASUREMENT_STEP#3");
    Fail("IntoElement#5");
    EXPECT_TRUE(m_measurement.GetXML("S"));
    EXPECT_NE(m_measurement.GetMeasurementSteps()->GetItemContainer(""), nullptr);
}

TEST_F(FailingDocument, a_settings_file_that_is_not_well_formed_does_not_load) {
    Fail("IsWellFormed");
    SystemConfigurationFile file;
    EXPECT_FALSE(file.Load("path"));
    EXPECT_EQ(file.GetDocument(), nullptr);
    UserConfigurationFile user;
    EXPECT_FALSE(user.Load("path"));
    EXPECT_EQ(user.GetDocument(), nullptr);
}

TEST_F(FailingDocument, the_user_file_has_a_default_path) {
    UserConfigurationFile user;
    EXPECT_TRUE(user.Load(""));
    EXPECT_EQ(Calls().front(), "Load ./configuration/user.conf.xml");
}

TEST_F(FailingDocument, a_settings_file_whose_root_cannot_be_entered_is_not_read) {
    SystemConfigurationFile file;
    ASSERT_TRUE(file.Load("path"));
    Fail("IntoElement");
    EXPECT_FALSE(file.GetXML());
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(FailingDocument, a_settings_file_needs_its_root_left) {
    SystemConfigurationFile file;
    ASSERT_TRUE(file.Load("path"));
    for (const char* section : {"GENERAL_INFO", "DEVICE_MONITOR_INFO", "LOGGING_INFO", "MEASUREMENT_ENGINE_INFO",
                                "MESSAGING_ENGINE_INFO", "REMOTE_INDICATOR_INFO", "SYSTEM_CONTROL_INFO",
                                "SYSTEM_MONITOR_INFO", "TEST_INTERFACE_INFO", "WEB_INTERFACE_INFO"}) {
        Fail(std::string("FindElement ") + section);
    }
    EXPECT_TRUE(file.GetXML());
    Fail("OutOfElement");
    EXPECT_FALSE(file.GetXML());
}

TEST_F(FailingDocument, a_user_file_whose_root_cannot_be_left_counts_as_not_read) {
    UserConfigurationFile user;
    ASSERT_TRUE(user.Load("path"));
    Fail("FindElement INFO_ITEM");
    EXPECT_TRUE(user.GetXML());
    Fail("OutOfElement#4");
    EXPECT_FALSE(user.GetXML());
}

using FailingDocumentDeathTest = FailingDocument;

// The error stream; under qemu it ends with a line of qemu.
std::string WholeStream(const std::string& lines) {
    return "^" + lines + "(qemu: uncaught target signal 6 [^\n]*\n)?$";
}

TEST_F(FailingDocumentDeathTest, a_missing_key_is_printed_and_logged) {
    m_base.SetSource("analyzer.conf.xml");
    Fail("FindElement INFO_ITEM");
    ASSERT_TRUE(m_base.GetXML("LOGGING_INFO"));
    EXPECT_DEATH(m_base.RequireValue("LoggingLevel"),
                 WholeStream("analyzer\\.conf\\.xml: section LOGGING_INFO has no key LoggingLevel\n"
                             "<5>Vernicor: analyzer\\.conf\\.xml: section LOGGING_INFO has no key LoggingLevel\n"));
}

TEST_F(FailingDocumentDeathTest, a_percent_sign_reaches_the_system_log_unchanged) {
    m_base.SetSource("100%s.xml");
    Fail("FindElement INFO_ITEM");
    ASSERT_TRUE(m_base.GetXML("S"));
    EXPECT_DEATH(m_base.RequireValue("K%n"), WholeStream("100%s\\.xml: section S has no key K%n\n"
                                                         "<5>Vernicor: 100%s\\.xml: section S has no key K%n\n"));
}

TEST_F(FailingDocumentDeathTest, a_missing_section_is_printed_and_logged) {
    SystemConfigurationFile file;
    ASSERT_TRUE(file.Load("/etc/analyzer.conf.xml"));
    EXPECT_DEATH(
        file.RequireGlobalConfigInfo(),
        WholeStream("/etc/analyzer\\.conf\\.xml: section GENERAL_INFO is missing or can't be read\n"
                    "<5>Vernicor: /etc/analyzer\\.conf\\.xml: section GENERAL_INFO is missing or can't be read\n"));
}
