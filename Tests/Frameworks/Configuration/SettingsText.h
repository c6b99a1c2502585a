// Texts of settings files for tests.
#pragma once

#include <string>

#include "Tests/Support/TemporaryFolder.h"

inline std::string Element(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">\n";
}

inline std::string Item(const std::string& name, const std::string& value) {
    return "<INFO_ITEM name=\"" + name + "\" value=\"" + value + "\"/>\n";
}

inline std::string StepOrder() { return Element("MEASUREMENT_STEP_ORDER", Item("1", "HomePosition")); }

inline std::string Step(const std::string& name) { return Element("MEASUREMENT_STEP", Item("Step", name)); }

inline std::string StepList(const std::string& content) { return Element("MEASUREMENT_STEP_LIST", content); }
