// The end of the process for a setting that it can't run without: a line on the error stream and in the system log
// names what is missing, then the process aborts. Any thread.
#pragma once

#include "Frameworks/Utilities/StdString.h"

// The place is the file and the part of it, such as "analyzer.conf.xml: section LOGGING_INFO".
[[noreturn]] void EndForMissingKey(const StdString& place, const StdString& key);

// The path is that of the settings file.
[[noreturn]] void EndForMissingSection(const StdString& path, const StdString& sectionName);
