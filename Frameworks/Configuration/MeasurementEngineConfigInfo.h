// The measurement section: its own items, then the list of measurement steps. Threads as for the base.
#pragma once

#include <memory>

#include "Frameworks/Configuration/ConfigurationBase.h"
#include "Frameworks/Configuration/InfoContainer.h"

class MeasurementEngineConfigInfo : public ConfigurationBase {
public:
    // As the base; also false without a step list that begins with an order list and has a step.
    bool GetXML(const StdString& sectionName) override;
    bool SetXML(const StdString& sectionName, ItemInfoElement* item) override;

    // The steps by their internal names; null before the first read.
    InfoContainer* GetMeasurementSteps() const { return m_steps.get(); }
    // The order list, by the values of its items. It has no effect: steps run in the order of their numbers.
    ItemInfoContainer* GetMeasurementStepOrder() const { return m_stepOrder.get(); }

private:
    bool GetBaseItems();
    bool GetMeasurementStepItems();
    bool ReadStepOrder();
    bool FindStepOrder();  // false also if a step comes first
    bool ReadSteps();
    bool ReadStep(const StdString& place);

    std::unique_ptr<InfoContainer> m_steps;
    std::unique_ptr<ItemInfoContainer> m_stepOrder;
};
