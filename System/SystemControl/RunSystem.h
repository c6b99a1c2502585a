// The life of the process: one SystemControl after another, so that a reset is a restart within the process.
#pragma once

#include <cstdint>

// On the main thread. Returns -1 if an exception leaves a SystemControl's constructor or destructor; otherwise never.
std::int32_t RunSystem();
