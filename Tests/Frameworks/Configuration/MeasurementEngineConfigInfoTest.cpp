#include "Frameworks/Configuration/MeasurementEngineConfigInfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Frameworks/Xml/XmlDocument.h"
#include "Tests/Frameworks/Configuration/SettingsText.h"
#include "Tests/Support/ReportedLines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* SectionName = "MEASUREMENT_ENGINE_INFO";

class MeasurementSection : public testing::Test {
protected:
    // Reads a section of that content; the position is then among the root's children.
    bool Read(const std::string& content) {
        EXPECT_TRUE(
            m_document.SetDocumentText(Element("ROOT_ANALYZER", Element(SectionName, content) + "<BEHIND/>").c_str()));
        EXPECT_TRUE(m_document.FindElement("ROOT_ANALYZER"));
        EXPECT_TRUE(m_document.IntoElement());
        m_section.SetDocument(&m_document);
        m_section.SetSource("analyzer.conf.xml");
        return m_section.GetXML(SectionName);
    }

    bool HasStep(const char* name) {
        return m_section.GetMeasurementSteps() != nullptr &&
               m_section.GetMeasurementSteps()->GetItemContainer(name) != nullptr;
    }

    ReportedLines m_lines;
    XmlDocument m_document;
    MeasurementEngineConfigInfo m_section;
};

}  // namespace

TEST_F(MeasurementSection, without_a_document_is_not_read) { EXPECT_FALSE(m_section.GetXML(SectionName)); }

TEST_F(MeasurementSection, that_is_absent_is_not_read) {
    EXPECT_TRUE(Read(StepList(StepOrder() + Step("HomePosition"))));
    EXPECT_FALSE(m_section.GetXML("OTHER_INFO"));
}

TEST_F(MeasurementSection, reads_its_items_the_order_and_the_steps) {
    EXPECT_TRUE(
        Read(Item("EmitterChannel", "2") +
             StepList(Element("MEASUREMENT_STEP_ORDER", Item("1", "Mixing") + Item("2", "Light")) +
                      Element("MEASUREMENT_STEP", Item("Step", "Mixing") + Item("Duration", "5")) + Step("Light"))));
    EXPECT_EQ(m_section.RequireValue("EmitterChannel"), "2");
    EXPECT_EQ(m_section.GetItem("Step"), nullptr);
    ASSERT_NE(m_section.GetMeasurementStepOrder(), nullptr);
    ASSERT_NE(m_section.GetMeasurementStepOrder()->GetItem("Light"), nullptr);
    EXPECT_EQ(m_section.GetMeasurementStepOrder()->GetItem("Light")->GetName(), "2");
    ASSERT_TRUE(HasStep("Mixing"));
    EXPECT_TRUE(HasStep("Light"));
    EXPECT_EQ(m_section.GetMeasurementSteps()->GetItemContainer("Mixing")->RequireValue("Duration"), "5");
    EXPECT_THAT(m_lines.Texts(), IsEmpty());
}

TEST_F(MeasurementSection, a_duplicate_item_is_reported_and_the_first_stays) {
    EXPECT_TRUE(Read(Item("A", "1") + Item("A", "2") + StepList(StepOrder() + Step("Light"))));
    EXPECT_EQ(m_section.RequireValue("A"), "1");
    EXPECT_THAT(m_lines.Texts(), ElementsAre("MeasurementEngineConfigInfo::GetBaseItems  Unable to add item"));
}

TEST_F(MeasurementSection, a_duplicate_value_in_the_order_list_is_reported) {
    EXPECT_TRUE(
        Read(StepList(Element("MEASUREMENT_STEP_ORDER", Item("1", "Light") + Item("2", "Light")) + Step("Light"))));
    EXPECT_EQ(m_section.GetMeasurementStepOrder()->GetItem("Light")->GetName(), "1");
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("MeasurementEngineConfigInfo::GetMeasurementStepItems  Unable to add item"));
}

TEST_F(MeasurementSection, a_duplicate_item_of_a_step_is_reported) {
    EXPECT_TRUE(Read(StepList(StepOrder() + Element("MEASUREMENT_STEP", Item("Step", "Light") + Item("Duration", "1") +
                                                                            Item("Duration", "2")))));
    EXPECT_EQ(m_section.GetMeasurementSteps()->GetItemContainer("Light")->RequireValue("Duration"), "1");
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("MeasurementEngineConfigInfo::GetMeasurementStepItems  Unable to add item"));
}

TEST_F(MeasurementSection, a_second_step_of_a_name_is_reported) {
    EXPECT_TRUE(
        Read(StepList(StepOrder() + Element("MEASUREMENT_STEP", Item("Step", "Light") + Item("Duration", "1")) +
                      Element("MEASUREMENT_STEP", Item("Step", "Light") + Item("Duration", "2")) + Step("Mixing"))));
    EXPECT_EQ(m_section.GetMeasurementSteps()->GetItemContainer("Light")->RequireValue("Duration"), "1");
    EXPECT_TRUE(HasStep("Mixing"));
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("MeasurementEngineConfigInfo::GetMeasurementStepItems  Unable to add itemContainer"));
}

TEST_F(MeasurementSection, a_step_without_a_name_has_the_empty_key) {
    EXPECT_TRUE(Read(StepList(StepOrder() + Element("MEASUREMENT_STEP", Item("Duration", "1")))));
    EXPECT_TRUE(HasStep(""));
}

TEST_F(MeasurementSection, without_a_step_list_is_unreadable) { EXPECT_FALSE(Read(Item("A", "1"))); }

TEST_F(MeasurementSection, with_an_empty_step_list_is_unreadable) { EXPECT_FALSE(Read("<MEASUREMENT_STEP_LIST/>")); }

TEST_F(MeasurementSection, with_a_step_list_in_front_of_its_items_is_unreadable) {
    EXPECT_FALSE(Read(StepList(StepOrder() + Step("Light")) + Item("A", "1")));
}

TEST_F(MeasurementSection, without_an_order_list_is_unreadable) { EXPECT_FALSE(Read(StepList(Step("Light")))); }

TEST_F(MeasurementSection, with_an_empty_order_list_is_unreadable) {
    EXPECT_FALSE(Read(StepList("<MEASUREMENT_STEP_ORDER/>" + Step("Light"))));
}

TEST_F(MeasurementSection, with_the_order_list_after_the_first_step_is_unreadable) {
    EXPECT_FALSE(Read(StepList(Step("HomePosition") + StepOrder() + Step("Light"))));
}

TEST_F(MeasurementSection, with_the_order_list_after_all_steps_is_unreadable) {
    EXPECT_FALSE(Read(StepList(Step("HomePosition") + Step("Light") + StepOrder())));
}

TEST_F(MeasurementSection, without_steps_is_unreadable) { EXPECT_FALSE(Read(StepList(StepOrder()))); }

TEST_F(MeasurementSection, other_elements_in_the_step_list_are_passed_over) {
    EXPECT_TRUE(Read(StepList("<OTHER/>" + StepOrder() + "<OTHER/>" + Step("Light") + "<OTHER/>")));
    EXPECT_TRUE(HasStep("Light"));
}

TEST_F(MeasurementSection, that_is_unreadable_leaves_the_position_for_later_sections) {
    for (const std::string& content : {std::string("<MEASUREMENT_STEP_LIST/>"), StepList(Step("Light") + StepOrder()),
                                       StepList(StepOrder()), StepList("<MEASUREMENT_STEP_ORDER/>"), Item("A", "1")}) {
        ASSERT_FALSE(Read(content));
        EXPECT_EQ(m_document.GetTagName(), SectionName) << content;
        EXPECT_TRUE(m_document.FindElement("BEHIND")) << content;
    }
}

TEST_F(MeasurementSection, a_second_read_replaces_order_and_steps) {
    ASSERT_TRUE(Read(StepList(StepOrder() + Step("Light"))));
    ASSERT_TRUE(Read(StepList(Element("MEASUREMENT_STEP_ORDER", Item("1", "Mixing")) + Step("Mixing"))));
    EXPECT_FALSE(HasStep("Light"));
    EXPECT_TRUE(HasStep("Mixing"));
    EXPECT_EQ(m_section.GetMeasurementStepOrder()->GetItem("HomePosition"), nullptr);
}

TEST_F(MeasurementSection, reads_a_very_long_step_list) {
    std::string steps;
    for (int step = 0; step < 20000; ++step) {
        steps += Step("Step" + std::to_string(step));
    }
    EXPECT_TRUE(Read(StepList(StepOrder() + steps)));
    EXPECT_TRUE(HasStep("Step0"));
    EXPECT_TRUE(HasStep("Step19999"));
}

using MeasurementSectionDeathTest = MeasurementSection;

TEST_F(MeasurementSectionDeathTest, a_missing_item_of_a_step_ends_the_process) {
    ASSERT_TRUE(Read(StepList(StepOrder() + Step("Light"))));
    EXPECT_DEATH(m_section.GetMeasurementSteps()->GetItemContainer("Light")->RequireValue("LED On"),
                 "^analyzer\\.conf\\.xml: section MEASUREMENT_ENGINE_INFO, step Light has no key LED On\n");
}

TEST_F(MeasurementSection, writing_reports_with_its_class_name) {
    EXPECT_FALSE(m_section.SetXML("", nullptr));
    ASSERT_TRUE(m_document.SetDocumentText("<ROOT_USER/>"));
    m_section.SetDocument(&m_document);
    ItemInfoElement item;
    EXPECT_FALSE(m_section.SetXML(SectionName, &item));
    EXPECT_THAT(m_lines.Texts(),
                ElementsAre("MeasurementEngineConfigInfo::SetXML  Invalid input arguments",
                            "MeasurementEngineConfigInfo::SetXML  Unable to find element \"ROOT_ANALYZER\""));
}

TEST_F(MeasurementSection, writing_replaces_an_item_and_leaves_the_steps) {
    ASSERT_TRUE(Read(Item("A", "1") + StepList(StepOrder() + Step("Light"))));
    ItemInfoElement item;
    item.SetName("A");
    item.SetValue("2");
    ASSERT_TRUE(m_section.SetXML(SectionName, &item));
    const std::string newItem = "<INFO_ITEM name=\"A\" type=\"\" value=\"2\" description=\"\" unitOfMeasure=\"\"/>\n";
    EXPECT_EQ(
        m_document.GetDocumentText(),
        Element("ROOT_ANALYZER", Element(SectionName, StepList(StepOrder() + Step("Light")) + newItem) + "<BEHIND/>"));
}
