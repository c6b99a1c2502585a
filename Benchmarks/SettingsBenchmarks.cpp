#include "Benchmarks/SettingsBenchmarks.h"

#include <algorithm>
#include <map>
#include <string>

#include "Benchmarks/Documents.h"
#include "Benchmarks/Readers.h"
#include "Benchmarks/Stopwatch.h"
#include "Frameworks/Configuration/SystemConfigurationFile.h"

namespace {

using Node = rapidxml::xml_node<>;

struct Item {
    std::string name;
    std::string description;
    std::string type;
    std::string unitOfMeasure;
    std::string value;
};

using Items = std::map<std::string, Item>;

struct Settings {
    std::map<std::string, Items> sections;
    std::map<std::string, Items> steps;
    Items stepOrder;
};

std::string Attribute(const Node& node, const char* name) {
    const rapidxml::xml_attribute<>* attribute = node.first_attribute(name);
    return attribute == nullptr ? std::string() : std::string(attribute->value(), attribute->value_size());
}

Items ReadItems(const Node& parent, std::string Item::*key) {
    Items items;
    for (const Node* node = parent.first_node("INFO_ITEM"); node != nullptr; node = node->next_sibling("INFO_ITEM")) {
        Item item{Attribute(*node, "name"), Attribute(*node, "description"), Attribute(*node, "type"),
                  Attribute(*node, "unitOfMeasure"), Attribute(*node, "value")};
        std::string itemKey = item.*key;
        items.try_emplace(std::move(itemKey), std::move(item));
    }
    return items;
}

void ReadSteps(const Node& list, Settings& settings) {
    if (const Node* order = list.first_node("MEASUREMENT_STEP_ORDER"); order != nullptr) {
        settings.stepOrder = ReadItems(*order, &Item::value);
    }
    constexpr const char* StepName = "MEASUREMENT_STEP";
    for (const Node* node = list.first_node(StepName); node != nullptr; node = node->next_sibling(StepName)) {
        Items items = ReadItems(*node, &Item::name);
        std::string key = items["Step"].value;
        settings.steps.try_emplace(std::move(key), std::move(items));
    }
}

Settings ReadSettings(const Node& root) {
    Settings settings;
    for (const Node* section = root.first_node(); section != nullptr; section = section->next_sibling()) {
        settings.sections.try_emplace(section->name(), ReadItems(*section, &Item::name));
        if (const Node* list = section->first_node("MEASUREMENT_STEP_LIST"); list != nullptr) {
            ReadSteps(*list, settings);
        }
    }
    return settings;
}

bool IsSame(const ItemInfoElement* ours, const Item& peers) {
    return ours != nullptr && ours->GetName() == peers.name.c_str() &&
           ours->GetDescription() == peers.description.c_str() && ours->GetType() == peers.type.c_str() &&
           ours->GetUnitOfMeasure() == peers.unitOfMeasure.c_str() && ours->GetValue() == peers.value.c_str();
}

bool AreSame(const ItemInfoContainer* ours, const Items& peers) {
    return ours != nullptr && std::all_of(peers.begin(), peers.end(), [ours](const auto& item) {
               return IsSame(ours->GetItem(item.first), item.second);
           });
}

// Both sides keep of the measurement, which is most of the file, its items, the order and every step.
void RequireSameItems(const std::string& path) {
    SystemConfigurationFile file;
    RapidxmlReader reader;
    if (!file.Load(path) || !file.GetXML() || !reader.Load(path)) {
        EndForFailure("the settings do not load");
    }
    const Settings peers = ReadSettings(*reader.document.first_node("ROOT_ANALYZER"));
    const MeasurementEngineConfigInfo& ours = *file.GetMeasurementEngineConfigInfo();
    bool isSame = AreSame(ours.GetItems(), peers.sections.at("MEASUREMENT_ENGINE_INFO")) &&
                  AreSame(ours.GetMeasurementStepOrder(), peers.stepOrder);
    for (const auto& [name, items] : peers.steps) {
        isSame = isSame && AreSame(ours.GetMeasurementSteps()->GetItemContainer(name), items);
    }
    if (!isSame || peers.steps.empty() || peers.stepOrder.empty()) {
        EndForFailure("the settings that were read are not the same");
    }
}

const std::string& CheckedPath() {
    const std::string& path = DocumentPath(SMALL);
    [[maybe_unused]] static const bool isChecked = (RequireSameItems(path), true);
    return path;
}

}  // namespace

double SettingsOurs() {
    const std::string& path = CheckedPath();
    return SecondsEach(BatchOf(SMALL), [&path] {
        SystemConfigurationFile file;
        if (!file.Load(path) || !file.GetXML() || file.GetMeasurementEngineConfigInfo() == nullptr) {
            EndForFailure("our settings do not load");
        }
    });
}

double SettingsRapidxml() {
    const std::string& path = CheckedPath();
    return SecondsEach(BatchOf(SMALL), [&path] {
        RapidxmlReader reader;
        const Node* root = reader.Load(path) ? reader.document.first_node("ROOT_ANALYZER") : nullptr;
        if (root == nullptr || ReadSettings(*root).steps.empty()) {
            EndForFailure("rapidxml's settings do not load");
        }
    });
}
