// The measurement section: its own items, and behind them the list of measurement steps. Threads as for the base.
#pragma once

#include <memory>

#include "Frameworks/Configuration/ConfigurationBase.h"
#include "Frameworks/Configuration/InfoContainer.h"

class MeasurementEngineConfigInfo : public ConfigurationBase {
public:
    // As the base, and false as well without a step list behind the items that has an order list in front of its steps.
    bool GetXML(const StdString& sectionName) override;
    bool SetXML(const StdString& sectionName, ItemInfoElement* item) override;

    // The steps by their internal names; null before the first read.
    InfoContainer* GetMeasurementSteps() const { return m_steps.get(); }
    // The order list, by the value of its items. Steps run in the order of their numbers, whatever it says.
    ItemInfoContainer* GetMeasurementStepOrder() const { return m_stepOrder.get(); }

private:
    bool GetBaseItems();
    bool GetMeasurementStepItems();
    bool ReadStepOrder();
    bool FindStepOrder();  // false as well where a step stands in front of it
    bool ReadSteps();
    bool ReadStep(const StdString& place);

    std::unique_ptr<InfoContainer> m_steps;
    std::unique_ptr<ItemInfoContainer> m_stepOrder;
};
