#include "Drivers/MemoryMappedIO.h"

#include <iterator>

#include "Drivers/PhysicalMemory.h"
#include "Frameworks/Utilities/Report.h"

namespace {

struct PioRegisters {
    std::uint32_t outputSet;
    std::uint32_t outputClear;
    std::uint32_t outputStatus;
    std::uint32_t dataStatus;
};

// By bank.
constexpr PioRegisters Registers[] = {
    {0xFFFFF430, 0xFFFFF434, 0xFFFFF418, 0xFFFFF43C},
    {0xFFFFF630, 0xFFFFF634, 0xFFFFF618, 0xFFFFF63C},
    {0xFFFFF830, 0xFFFFF834, 0xFFFFF818, 0xFFFFF83C},
    {0xFFFFFA30, 0xFFFFFA34, 0xFFFFFA18, 0xFFFFFA3C},
};

bool OpenFor(PinAddress address, PhysicalMemory& memory) {
    if (address.bank >= std::size(Registers) || address.pin >= PinsPerBank) {
        return ReportError("MemoryMappedIO - Invalid GPIO pin", MEASUREMENT_ENGINE);
    }
    return memory.Open() || ReportError("MemoryMappedIO - 'Open' error", MEASUREMENT_ENGINE);
}

GpioLevel ReadBit(PinAddress address, std::uint32_t PioRegisters::*status, GpioLevel onError) {
    PhysicalMemory memory;
    if (!OpenFor(address, memory)) {
        return onError;
    }
    std::uint32_t word = 0;
    if (!memory.ReadWord(Registers[address.bank].*status, word)) {
        ReportError("MemoryMappedIO - 'Read' error", MEASUREMENT_ENGINE);
        return onError;
    }
    return (word >> address.pin & 1U) != 0 ? HIGH_GPIO_LEVEL : LOW_GPIO_LEVEL;
}

}  // namespace

GpioLevel MemoryMappedIO::ReadPin(PinAddress address) {
    return ReadBit(address, &PioRegisters::dataStatus, ERROR_GPIO_LEVEL);
}

GpioLevel MemoryMappedIO::ReadOutput(PinAddress address) {
    return ReadBit(address, &PioRegisters::outputStatus, LOW_GPIO_LEVEL);
}

bool MemoryMappedIO::WritePin(PinAddress address, std::uint32_t level) {
    PhysicalMemory memory;
    if (!OpenFor(address, memory)) {
        return false;
    }
    const PioRegisters& registers = Registers[address.bank];
    const std::uint32_t place = level != 0 ? registers.outputSet : registers.outputClear;
    return memory.WriteWord(place, 1U << address.pin) ||
           ReportError("MemoryMappedIO - 'Write' error", MEASUREMENT_ENGINE);
}
