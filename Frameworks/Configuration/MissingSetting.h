// The end of the process for a setting that it can't run without. Any thread.
#pragma once

#include "Frameworks/Utilities/StdString.h"

// Writes the text to the error stream and to the system log, then aborts.
[[noreturn]] void EndForMissingSetting(const StdString& text);
