// A parsed command of the front end.
#pragma once

#include <cstdint>

#include "Frameworks/Utilities/StdString.h"

struct GuiCommand {
    std::int32_t code = 0;  // 0 if there is none
    StdString text;         // empty if there is none; no command uses it
};
