#include "System/MeasurementEngine/StepDefinition.h"

bool StepDefinition::Load(const InfoContainer& steps) {
    bool loaded = false;
    for (int step = 0; step < StepCount; ++step) {
        const ItemInfoContainer* items = steps.GetItemContainer(GetStepInternalName(static_cast<StepType>(step)));
        if (items == nullptr) {
            continue;
        }
        auto parameters = std::make_shared<StepParameters>();
        loaded = parameters->Fill(items);
        if (loaded) {
            m_steps.try_emplace(parameters->stepType, parameters);
        }
    }
    return loaded;
}

const StepParameters* StepDefinition::operator[](StepType step) {
    return step == NO_STEP ? nullptr : m_steps[step].get();
}
