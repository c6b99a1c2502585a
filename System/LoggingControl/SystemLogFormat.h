// Converts a line to the format argument of syslog. "%%" prints one percent sign and "%m" the last error, as syslog
// defines them. The percent sign of any other conversion is doubled, so that it is printed: a line may come from a
// socket, and "%n" must not write through an argument that is not passed. Any thread.
#pragma once

#include "Frameworks/Utilities/StdString.h"

StdString SystemLogFormat(const StdString& line);
