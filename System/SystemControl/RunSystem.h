// The life of the process: one SystemControl after another, so that a reset is a restart within the process.
#pragma once

#include <cstdint>

// On the main thread. Comes back only where an exception leaves a SystemControl's constructor or destructor, with -1.
std::int32_t RunSystem();
