// One line of the mount table, field by field.
#pragma once

#include "Frameworks/Utilities/StdString.h"

struct MountEntry {
    StdString device;
    StdString directory;
    StdString type;
    StdString options;
    StdString dumpFrequency;
    StdString passNumber;
};
