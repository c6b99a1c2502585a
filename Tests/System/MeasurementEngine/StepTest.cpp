#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Frameworks/Configuration/SystemConfigurationFile.h"
#include "Frameworks/Xml/XmlDocument.h"
#include "System/MeasurementEngine/StepDefinition.h"
#include "System/Messages/StepResults.h"
#include "Tests/Frameworks/Configuration/SettingsText.h"
#include "Tests/Support/ReportedLines.h"

namespace {

struct StepRow {
    int number;
    const char* internalName;
    const char* displayName;
};

constexpr StepRow Steps[] = {
    {0, "HomePosition", "Verify Flag (Home Poisition)"},
    {1, "DarkCountMeasurement", "Dark Count Measurement"},
    {2, "NoLight", "Verify Flag (No Light)"},
    {3, "VerifyFlow", "Sample Flush & Delivery Verify Flow"},
    {4, "SampleFlushDelivery", "Sample Flush & Delivery"},
    {5, "SettlingTime", "Sample Settling Time"},
    {6, "LEDAdjustment", "LED Adjustment"},
    {7, "ReferenceOpticalMeasurement", "Reference Optical Measurement"},
    {8, "OptionalMitigation", "Optional Mitigation"},
    {9, "ReferenceSRDVMeasurement", "Reference SRDV Measurement"},
    {10, "PreMixStiring", "Pre Mix Stiring"},
    {11, "ReagentStaging", "Reagent Staging"},
    {12, "ReagentAddition", "Reagent Addition"},
    {13, "Light", "Verify Flag Sensor (Light)"},
    {14, "Mixing", "Mixing"},
    {15, "Debubbling", "Color Development (Debubbling)"},
    {16, "SampleOpticalMeasurement", "Reacted Sample Optical Measurement"},
    {17, "SampleSRDVMeasurement", "Sample SRDV Measurement"},
    {18, "SanityCheck", "Sanity Check"},
};

constexpr const char* ItemNames[] = {
    "Step",        "Duration",   "LED On", "Stirring On", "Sample Valve On", "ADC Monitor On", "Find Start Position",
    "Motor Angle", "Motor Speed"};

using ItemValues = std::map<std::string, std::string>;

std::unique_ptr<ItemInfoContainer> StepItems(const ItemValues& values, const std::string& left = "") {
    auto items = std::make_unique<ItemInfoContainer>();
    for (const char* name : ItemNames) {
        if (name == left) {
            continue;
        }
        auto item = std::make_unique<ItemInfoElement>();
        item->SetName(name);
        const auto value = values.find(name);
        item->SetValue(value == values.end() ? "0" : value->second);
        items->AddItem(std::move(item));
    }
    return items;
}

void Add(InfoContainer& steps, const char* name, const ItemValues& values = {}) {
    ItemValues all = values;
    all.emplace("Step", name);
    ASSERT_TRUE(steps.AddItemContainer(StepItems(all), name));
}

std::string StepElement(const std::string& name, const std::string& duration) {
    std::string content;
    for (const char* item : ItemNames) {
        const std::string value = item == std::string("Step") ? name : item == std::string("Duration") ? duration : "0";
        content += Item(item, value);
    }
    return Element("MEASUREMENT_STEP", content);
}

// The table that the system makes of a settings file with that step list.
struct ConfiguredSteps {
    explicit ConfiguredSteps(const std::string& list) {
        XmlDocument document;
        EXPECT_TRUE(document.SetDocumentText(
            Element("ROOT_ANALYZER", Element("MEASUREMENT_ENGINE_INFO", StepList(list))).c_str()));
        EXPECT_TRUE(document.FindElement("ROOT_ANALYZER"));
        EXPECT_TRUE(document.IntoElement());
        MeasurementEngineConfigInfo section;
        section.SetDocument(&document);
        EXPECT_TRUE(section.GetXML("MEASUREMENT_ENGINE_INFO"));
        loaded = section.GetMeasurementSteps() != nullptr && table.Load(*section.GetMeasurementSteps());
    }

    bool loaded = false;
    StepDefinition table;
};

}  // namespace

TEST(StepType, nineteen_steps_have_their_two_names) {
    ASSERT_EQ(std::size(Steps), std::size_t{StepCount});
    for (const StepRow& row : Steps) {
        EXPECT_EQ(GetStepInternalName(static_cast<StepType>(row.number)), row.internalName);
        EXPECT_EQ(GetStepDisplayName(static_cast<StepType>(row.number)), row.displayName);
    }
}

TEST(StepType, is_found_by_its_internal_name) {
    for (const StepRow& row : Steps) {
        EXPECT_EQ(FindStepType(row.internalName), row.number);
    }
}

TEST(StepType, the_steps_with_a_meaning_of_their_own_have_these_numbers) {
    EXPECT_EQ(DARK_COUNT_MEASUREMENT_STEP, 1);
    EXPECT_EQ(LED_ADJUSTMENT_STEP, 6);
    EXPECT_EQ(REFERENCE_OPTICAL_MEASUREMENT_STEP, 7);
    EXPECT_EQ(SAMPLE_OPTICAL_MEASUREMENT_STEP, 16);
}

TEST(StepType, a_text_that_is_no_internal_name_is_no_step) {
    EXPECT_EQ(FindStepType("homeposition"), NO_STEP);
    EXPECT_EQ(FindStepType("HomePosition "), NO_STEP);
    EXPECT_EQ(FindStepType("Dark Count Measurement"), NO_STEP);
    EXPECT_EQ(FindStepType(""), NO_STEP);
    EXPECT_EQ(NO_STEP, -1);
}

TEST(StepType, a_number_out_of_range_has_no_name) {
    EXPECT_EQ(GetStepInternalName(NO_STEP), "");
    EXPECT_EQ(GetStepDisplayName(NO_STEP), "");
    EXPECT_EQ(GetStepInternalName(static_cast<StepType>(19)), "");
    EXPECT_EQ(GetStepDisplayName(static_cast<StepType>(19)), "");
}

TEST(StepParameters, take_each_item_to_its_field) {
    StepParameters step;
    ASSERT_TRUE(step.Fill(
        StepItems({{"Step", "Mixing"}, {"Duration", "5000"}, {"Motor Angle", "-90.25"}, {"Motor Speed", "0x10"}})
            .get()));
    EXPECT_EQ(step.stepType, MIXING_STEP);
    EXPECT_EQ(step.duration, 5000U);
    EXPECT_FALSE(step.ledOn);
    EXPECT_FALSE(step.stirringOn);
    EXPECT_FALSE(step.adcMonitorOn);
    EXPECT_FALSE(step.findStartPosition);
    EXPECT_FALSE(step.sampleValveOn);
    EXPECT_EQ(step.motorAngle, -90.25F);
    EXPECT_EQ(step.motorSpeed, 16U);
}

TEST(StepParameters, take_each_switch_to_its_own_flag) {
    struct {
        const char* item;
        bool StepParameters::*flag;
    } constexpr Switches[] = {{"LED On", &StepParameters::ledOn},
                              {"Stirring On", &StepParameters::stirringOn},
                              {"Sample Valve On", &StepParameters::sampleValveOn},
                              {"ADC Monitor On", &StepParameters::adcMonitorOn},
                              {"Find Start Position", &StepParameters::findStartPosition}};
    for (const auto& on : Switches) {
        StepParameters step;
        ASSERT_TRUE(step.Fill(StepItems({{on.item, " Yes "}}).get()));
        for (const auto& other : Switches) {
            EXPECT_EQ(step.*other.flag, &on == &other) << on.item << " shows in " << other.item;
        }
    }
}

TEST(StepParameters, odd_numbers_read_as_the_conversions_give_them) {
    StepParameters step;
    ASSERT_TRUE(step.Fill(StepItems({{"Step", "unknown"},
                                     {"Duration", "many"},
                                     {"LED On", "2"},
                                     {"Motor Angle", "12.5 degrees"},
                                     {"Motor Speed", ""}})
                              .get()));
    EXPECT_EQ(step.stepType, NO_STEP);
    EXPECT_EQ(step.duration, 0U);
    EXPECT_FALSE(step.ledOn);
    EXPECT_EQ(step.motorAngle, 12.5F);
    EXPECT_EQ(step.motorSpeed, 0U);
}

TEST(StepParameters, minus_one_reads_as_the_unsigned_word) {
    StepParameters step;
    ASSERT_TRUE(step.Fill(StepItems({{"Duration", "-1"}, {"Motor Angle", "-1"}, {"Motor Speed", "-1"}}).get()));
    EXPECT_EQ(step.duration, 4294967295U);
    EXPECT_EQ(step.motorAngle, -1.0F);
    EXPECT_EQ(step.motorSpeed, 4294967295U);
}

TEST(StepParameters, are_not_filled_from_nothing) {
    StepParameters step;
    EXPECT_FALSE(step.Fill(nullptr));
}

TEST(StepParametersDeathTest, each_missing_item_ends_the_process_with_a_line_that_names_step_and_item) {
    for (const char* name : ItemNames) {
        const auto items = StepItems({}, name);
        items->SetPlace("analyzer.conf.xml: section MEASUREMENT_ENGINE_INFO, step Light");
        StepParameters step;
        EXPECT_DEATH(step.Fill(items.get()),
                     std::string("^analyzer\\.conf\\.xml: section MEASUREMENT_ENGINE_INFO, step Light has no key ") +
                         name + "\n");
    }
}

TEST(StepDefinition, of_no_steps_does_not_load) {
    StepDefinition table;
    EXPECT_FALSE(table.Load(InfoContainer()));
    EXPECT_EQ(table.GetSize(), 0U);
}

TEST(StepDefinition, loads_all_nineteen_steps) {
    InfoContainer steps;
    for (const StepRow& row : Steps) {
        Add(steps, row.internalName, {{"Duration", std::to_string(100 + row.number)}});
    }
    StepDefinition table;
    EXPECT_TRUE(table.Load(steps));
    EXPECT_EQ(table.GetSize(), 19U);
    for (const StepRow& row : Steps) {
        const StepParameters* step = table[static_cast<StepType>(row.number)];
        ASSERT_NE(step, nullptr) << row.internalName;
        EXPECT_EQ(step->stepType, row.number);
        EXPECT_EQ(step->duration, 100U + static_cast<unsigned>(row.number));
    }
}

TEST(StepDefinition, loads_fewer_than_nineteen_steps_without_complaint) {
    const ReportedLines lines;
    InfoContainer steps;
    Add(steps, "Light");
    StepDefinition table;
    EXPECT_TRUE(table.Load(steps));
    EXPECT_EQ(table.GetSize(), 1U);
    EXPECT_THAT(lines.Texts(), testing::IsEmpty());
}

TEST(StepDefinition, loads_no_item_without_a_name) {
    InfoContainer steps;
    ASSERT_TRUE(steps.AddItemContainer(StepItems({{"Step", "Light"}}), ""));
    StepDefinition table;
    EXPECT_FALSE(table.Load(steps));
    EXPECT_EQ(table.GetSize(), 0U);
}

TEST(StepDefinition, asking_for_a_step_that_is_not_configured_gives_null_and_makes_an_entry) {
    InfoContainer steps;
    Add(steps, "Light");
    StepDefinition table;
    ASSERT_TRUE(table.Load(steps));
    EXPECT_EQ(table[MIXING_STEP], nullptr);
    EXPECT_EQ(table.GetSize(), 2U);
    EXPECT_EQ(table[MIXING_STEP], nullptr);
    EXPECT_EQ(table.GetSize(), 2U);
}

TEST(StepDefinition, asking_for_no_step_gives_null_and_makes_no_entry) {
    StepDefinition table;
    EXPECT_EQ(table[NO_STEP], nullptr);
    EXPECT_EQ(table.GetSize(), 0U);
}

TEST(StepDefinition, a_step_has_the_number_of_its_item) {
    InfoContainer steps;
    ASSERT_TRUE(steps.AddItemContainer(StepItems({{"Step", "Mixing"}}), "Light"));
    StepDefinition table;
    ASSERT_TRUE(table.Load(steps));
    ASSERT_EQ(table.GetSize(), 1U);
    EXPECT_EQ(table[MIXING_STEP]->stepType, MIXING_STEP);
}

TEST(StepDefinition, a_copy_shares_the_records_and_keeps_them_alive) {
    InfoContainer steps;
    Add(steps, "Light", {{"Duration", "5"}});
    StepDefinition copy;
    const StepParameters* record = nullptr;
    {
        StepDefinition table;
        ASSERT_TRUE(table.Load(steps));
        copy = table;
        record = table[LIGHT_STEP];
    }
    EXPECT_EQ(copy[LIGHT_STEP], record);
    EXPECT_EQ(copy[LIGHT_STEP]->duration, 5U);
}

TEST(ConfiguredSteps, a_step_of_an_unknown_name_does_not_enter_the_table) {
    ConfiguredSteps steps(StepOrder() + StepElement("Rinse", "1") + StepElement("Light", "2"));
    EXPECT_TRUE(steps.loaded);
    EXPECT_EQ(steps.table.GetSize(), 1U);
    EXPECT_NE(steps.table[LIGHT_STEP], nullptr);
}

TEST(ConfiguredSteps, a_name_in_another_case_is_unknown) {
    ConfiguredSteps steps(StepOrder() + StepElement("light", "1"));
    EXPECT_FALSE(steps.loaded);
    EXPECT_EQ(steps.table.GetSize(), 0U);
}

TEST(ConfiguredSteps, of_two_with_one_name_the_first_stays_and_the_second_is_reported) {
    const ReportedLines lines;
    ConfiguredSteps steps(StepOrder() + StepElement("Light", "1") + StepElement("Light", "2"));
    EXPECT_TRUE(steps.loaded);
    EXPECT_EQ(steps.table[LIGHT_STEP]->duration, 1U);
    EXPECT_THAT(
        lines.Texts(),
        testing::ElementsAre("MeasurementEngineConfigInfo::GetMeasurementStepItems  Unable to add itemContainer"));
}

TEST(ConfiguredSteps, the_order_list_changes_nothing) {
    const std::string elements = StepElement("Light", "13") + StepElement("HomePosition", "1");
    for (const std::string& order : {Item("1", "Light") + Item("2", "HomePosition"),
                                     Item("1", "HomePosition") + Item("2", "Light"), Item("1", "SanityCheck")}) {
        ConfiguredSteps steps(Element("MEASUREMENT_STEP_ORDER", order) + elements);
        EXPECT_TRUE(steps.loaded);
        EXPECT_EQ(steps.table.GetSize(), 2U);
        EXPECT_EQ(steps.table[HOME_POSITION_STEP]->stepType, HOME_POSITION_STEP);
        EXPECT_EQ(steps.table[LIGHT_STEP]->stepType, LIGHT_STEP);
    }
}

TEST(ConfiguredSteps, of_the_installed_settings_are_all_nineteen) {
    SystemConfigurationFile file;
    ASSERT_TRUE(file.Load(SOURCE_FOLDER "/configuration/analyzer.conf.xml"));
    ASSERT_TRUE(file.GetXML());
    ASSERT_NE(file.GetMeasurementEngineConfigInfo(), nullptr);
    StepDefinition table;
    EXPECT_TRUE(table.Load(*file.GetMeasurementEngineConfigInfo()->GetMeasurementSteps()));
    EXPECT_EQ(table.GetSize(), 19U);
}

TEST(StepResults, assignment_copies_samples_and_step) {
    StepParameters step;
    step.stepType = MIXING_STEP;
    step.motorAngle = 1.5F;
    TimeInfo time;
    StepResults results({DetectorInformation(1.0, time), DetectorInformation(-2.0, time)}, step);
    StepResults copy;
    EXPECT_TRUE(copy.GetSamples().empty());
    copy = results;
    results.SetSamples({});
    results.SetStep({});
    ASSERT_EQ(copy.GetSamples().size(), 2U);
    EXPECT_EQ(copy.GetSamples()[0].GetCount(), 1.0);
    EXPECT_EQ(copy.GetSamples()[1].GetCount(), -2.0);
    EXPECT_TRUE(copy.GetSamples()[1].GetTime() == time);
    EXPECT_EQ(copy.GetStep().stepType, MIXING_STEP);
    EXPECT_EQ(copy.GetStep().motorAngle, 1.5F);
}
