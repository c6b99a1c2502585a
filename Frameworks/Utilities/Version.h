// The version of this software; the build takes it from here.
#pragma once

#include "Frameworks/Utilities/StdString.h"

inline constexpr int VersionNumbers[] = {0, 2, 1, 19};

StdString GetVersionText();  // the four numbers with a "." between them
