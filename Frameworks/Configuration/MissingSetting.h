// The end of the process if a required setting is missing: a line on the error stream and in the system log names it,
// then the process aborts. Any thread.
#pragma once

#include "Frameworks/Utilities/StdString.h"

// The place is the file and its part, such as "analyzer.conf.xml: section LOGGING_INFO".
[[noreturn]] void EndForMissingKey(const StdString& place, const StdString& key);

// The path of the settings file.
[[noreturn]] void EndForMissingSection(const StdString& path, const StdString& sectionName);
