// A command of the front end, taken apart.
#pragma once

#include <cstdint>

#include "Frameworks/Utilities/StdString.h"

struct GuiCommand {
    std::int32_t code = 0;  // 0 where there is none
    StdString text;         // empty where there is none; no command uses it
};
