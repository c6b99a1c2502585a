// A line as the format that syslog takes it for: "%%" stands for one percent sign and "%m" for the last error. Any
// other conversion would read or write through an argument that nobody passes, so its percent sign is doubled and it
// prints as it stands: a line with "%n" in it, which may come from a socket, must not end the process. Any thread.
#pragma once

#include "Frameworks/Utilities/StdString.h"

StdString SystemLogFormat(const StdString& line);
