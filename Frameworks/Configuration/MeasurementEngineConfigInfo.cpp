#include "Frameworks/Configuration/MeasurementEngineConfigInfo.h"

#include "Frameworks/Utilities/Report.h"
#include "Frameworks/Xml/XmlDocument.h"

namespace {

constexpr const char* StepListName = "MEASUREMENT_STEP_LIST";
constexpr const char* StepOrderName = "MEASUREMENT_STEP_ORDER";
constexpr const char* StepName = "MEASUREMENT_STEP";
constexpr const char* StepKeyName = "Step";

constexpr const char* ItemRefusedText = "MeasurementEngineConfigInfo::GetMeasurementStepItems  Unable to add item";
constexpr const char* ContainerRefusedText =
    "MeasurementEngineConfigInfo::GetMeasurementStepItems  Unable to add itemContainer";

// Creates the container, or clears an existing one.
template <class Container>
void Empty(std::unique_ptr<Container>& container) {
    if (container == nullptr) {
        container = std::make_unique<Container>();
    } else {
        container->Clear();
    }
}

}  // namespace

bool MeasurementEngineConfigInfo::GetXML(const StdString& sectionName) {
    return FindSection(sectionName) && GetBaseItems() && GetMeasurementStepItems();
}

bool MeasurementEngineConfigInfo::SetXML(const StdString& sectionName, ItemInfoElement* item) {
    return WriteItem("MeasurementEngineConfigInfo::SetXML  ", sectionName, item);
}

bool MeasurementEngineConfigInfo::GetBaseItems() {
    return ReadItems("MeasurementEngineConfigInfo::GetBaseItems  Unable to add item");
}

// Leaves what it entered even after a failure: later sections are searched from this level.
bool MeasurementEngineConfigInfo::GetMeasurementStepItems() {
    XmlDocument* document = GetDocument();
    if (!document->IntoElement()) {
        return false;
    }
    bool result = false;
    if (document->FindElement(StepListName) && document->IntoElement()) {
        result = ReadStepOrder() && ReadSteps();
        result = document->OutOfElement() && result;
    }
    return document->OutOfElement() && result;
}

bool MeasurementEngineConfigInfo::ReadStepOrder() {
    Empty(m_stepOrder);
    XmlDocument* document = GetDocument();
    if (!FindStepOrder() || !document->IntoElement()) {
        return false;
    }
    m_stepOrder->SetPlace(Place() + ", " + StepOrderName);
    const bool added = AddItems(*m_stepOrder, &ItemInfoContainer::AddItemByValue, ItemRefusedText) > 0;
    return document->OutOfElement() && added;
}

bool MeasurementEngineConfigInfo::FindStepOrder() {
    while (GetDocument()->FindElement()) {
        const std::string name = GetDocument()->GetTagName();
        if (name == StepOrderName || name == StepName) {
            return name == StepOrderName;
        }
    }
    return false;
}

bool MeasurementEngineConfigInfo::ReadSteps() {
    Empty(m_steps);
    XmlDocument* document = GetDocument();
    const StdString place = Place() + ", step ";
    bool result = false;
    while (document->FindElement(StepName)) {
        if (!document->IntoElement()) {
            continue;
        }
        result = ReadStep(place) || result;
        result = document->OutOfElement() && result;
    }
    return result;
}

bool MeasurementEngineConfigInfo::ReadStep(const StdString& place) {
    auto items = std::make_unique<ItemInfoContainer>();
    AddItems(*items, &ItemInfoContainer::AddItem, ItemRefusedText);
    const StdString key = items->GetValueOr(StepKeyName, "");
    items->SetPlace(place + key);
    return m_steps->AddItemContainer(std::move(items), key) || ReportError(ContainerRefusedText, SYSTEM_CONTROL);
}
