// Digital lines straight through the processor's PIO registers, with no claim on the line. Each call maps the register
// again. Failures are logged for the measurement engine, the main user. Any thread: setting and clearing are separate
// registers, so no call disturbs another line.
#pragma once

#include <cstdint>

#include "Drivers/GpioPin.h"

namespace MemoryMappedIO {

// Bank 0 to 3, pin 0 to 31. Low or high; ERROR_GPIO_LEVEL on failure.
GpioLevel ReadPin(PinAddress address);

// Low for level 0, high for any other. False on failure.
bool WritePin(PinAddress address, std::uint32_t level);

// The level that the output is driven to; low on failure too.
GpioLevel ReadOutput(PinAddress address);

}  // namespace MemoryMappedIO
