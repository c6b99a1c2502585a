// One named value of a frame to the front end. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <variant>

#include "Frameworks/Utilities/StdString.h"

using GuiPair = std::pair<StdString, StdString>;  // name and value as they go out

struct GuiElement {
    // By owner: a command or the seconds of a date; chlorine; a text that ends in a zero byte.
    std::variant<std::int32_t, float, std::unique_ptr<char[]>> value;
    StdString valueText;  // made when the frame is
    StdString name;
    bool isSet = false;  // from the setter until the value went into a frame

    // The pair with that text; the element counts as sent.
    GuiPair Take(const StdString& text);
};

std::unique_ptr<GuiElement> MakeGuiElement(const char* name);  // null where memory has run out
