// The table of the configured steps. One thread fills and indexes it; the records that it hands out are read only and
// live as long as the table or a copy of it.
#pragma once

#include <cstddef>
#include <map>
#include <memory>

#include "Frameworks/Configuration/InfoContainer.h"
#include "Frameworks/Xml/XMLData.h"
#include "System/Messages/StepParameters.h"

class StepDefinition : public XMLData {
public:
    // True if the last of the configured steps was read well; a table of fewer than nineteen is no failure here.
    bool Load(const InfoContainer& steps);

    std::size_t GetSize() const { return m_steps.size(); }

    // Null for a step that is not configured; the table then grows by an empty entry. NO_STEP gives null and adds
    // nothing.
    const StepParameters* operator[](StepType step);

private:
    std::map<StepType, std::shared_ptr<const StepParameters>> m_steps;
};
