// One named value of a frame to the front end. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <variant>

#include "Frameworks/Utilities/StdString.h"

using GuiPair = std::pair<StdString, StdString>;  // name and value as they are sent

struct GuiElement {
    // Depends on the element: a command or the seconds of a date; chlorine; a text that ends with a zero byte.
    std::variant<std::int32_t, float, std::unique_ptr<char[]>> value;
    StdString valueText;  // made with the frame
    StdString name;
    bool isSet = false;  // between the setter and the frame

    // Returns the pair with that text and marks the element as not set.
    GuiPair Take(const StdString& text);
};

std::unique_ptr<GuiElement> MakeGuiElement(const char* name);  // null if the allocation fails
