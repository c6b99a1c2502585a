#include "Drivers/GpioPin.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "Drivers/DeviceFile.h"
#include "Drivers/Print.h"
#include "Drivers/SysfsClaim.h"

namespace {

constexpr const char* GpioDirectory = "/sys/class/gpio/";
constexpr SysfsKind Gpio{"/sys/class/gpio/export", "/sys/class/gpio/unexport", "unable to lock a gpio",
                         "unable to release a gpio", true};

const char* EdgeText(GpioEdge edge) {
    switch (edge) {
        case RISING_GPIO_EDGE:
            return "rising";
        case FALLING_GPIO_EDGE:
            return "falling";
        case BOTH_GPIO_EDGE:
            return "both";
        default:
            return "none";
    }
}

// The first two bytes of the value file: the level and a line end. Reading them also takes note of a pending edge.
bool ReadValue(int descriptor, char& level) {
    std::array<char, 2> bytes{};
    if (lseek(descriptor, 0, SEEK_SET) != 0 || read(descriptor, bytes.data(), bytes.size()) < 1) {
        return false;
    }
    level = bytes[0];
    return true;
}

}  // namespace

GpioPin::GpioPin(PinAddress address) : m_address(address) {
    if (address.pin >= PinsPerBank) {
        PrintOutput("wrong gpio pin");
        return;
    }
    Claim(INPUT_GPIO_MODE, NO_GPIO_EDGE);
}

GpioPin::GpioPin(PinAddress address, GpioMode mode, GpioEdge edge) : m_address(address) {
    if (address.pin >= PinsPerBank) {
        PrintError("wrong gpio pin");
        return;
    }
    Claim(mode, edge);
}

// This releases also a line that another object has claimed, so the object that ends last finds it gone.
GpioPin::~GpioPin() { m_valid = Unexport(); }

void GpioPin::Claim(GpioMode mode, GpioEdge edge) { m_valid = Export() && SetModeAndEdge(mode, edge); }

bool GpioPin::Export() { return SysfsClaim::Export(Gpio, Directory(), ExportNumber()); }

bool GpioPin::Unexport() { return SysfsClaim::Unexport(Gpio, Directory(), ExportNumber()); }

bool GpioPin::SetDirection(GpioMode mode) {
    if (!IsLocked()) {
        return FailWithError(NotLockedYet);
    }
    if (!SysfsClaim::Write(Gpio, Directory() + "/direction", mode == OUTPUT_GPIO_MODE ? "out" : "in",
                           "unable to set the gpio mode")) {
        return false;
    }
    m_mode = mode;
    return true;
}

bool GpioPin::SetEdge(GpioEdge edge) {
    if (!IsLocked()) {
        return FailWithError(NotLockedYet);
    }
    if (!SysfsClaim::Write(Gpio, Directory() + "/edge", EdgeText(edge), "unable to set the gpio trigger")) {
        return false;
    }
    m_edge = edge;
    return true;
}

bool GpioPin::SetModeAndEdge(GpioMode mode, GpioEdge edge) {
    return SetDirection(mode) && SetEdge(mode == EDGE_GPIO_MODE ? edge : NO_GPIO_EDGE);
}

GpioLevel GpioPin::Read() const {
    if (!IsLocked()) {
        PrintError(NotLockedYet);
        return ERROR_GPIO_LEVEL;
    }
    std::string text;
    DeviceFile::ReadText(Directory() + "/value", text);
    return DeviceFile::FirstWord(text) == "1" ? HIGH_GPIO_LEVEL : LOW_GPIO_LEVEL;
}

bool GpioPin::Write(std::int32_t level) {
    if (m_mode != OUTPUT_GPIO_MODE) {
        return false;
    }
    if (!IsLocked()) {
        return FailWithError(NotLockedYet);
    }
    return SysfsClaim::Write(Gpio, Directory() + "/value", level == HIGH_GPIO_LEVEL ? "1" : "0",
                             "unable to set the gpio value");
}

GpioLevel GpioPin::WaitForEdge(std::int32_t milliseconds) const {
    if (m_mode != EDGE_GPIO_MODE) {
        return Read();
    }
    if (!IsLocked()) {
        PrintError(NotLockedYet);
        return ERROR_GPIO_LEVEL;
    }
    const FileDescriptor file(Directory() + "/value", O_RDONLY | O_CLOEXEC);
    if (!file.IsOpen()) {
        return ERROR_GPIO_LEVEL;
    }
    char level = '0';
    ReadValue(file.Get(), level);
    pollfd event{file.Get(), POLLPRI, 0};
    if (poll(&event, 1, milliseconds) < 1) {
        return TIME_OUT_GPIO_LEVEL;
    }
    if ((event.revents & POLLPRI) == 0 || !ReadValue(file.Get(), level)) {
        return ERROR_GPIO_LEVEL;
    }
    return level != '0' ? HIGH_GPIO_LEVEL : LOW_GPIO_LEVEL;
}

// The kernel of this board names the directory after the line, not after its number: pioA2, pioB15.
std::string GpioPin::Directory() const {
    return std::string(GpioDirectory) + "pio" + static_cast<char>('A' + m_address.bank) + std::to_string(m_address.pin);
}

std::string GpioPin::ExportNumber() const { return std::to_string(m_address.bank * PinsPerBank + m_address.pin); }

bool GpioPin::IsLocked() const { return DeviceFile::DirectoryOpens(Directory()); }

bool ClaimOutput(PinAddress address, std::unique_ptr<GpioPin>& line) {
    line.reset();
    line = std::make_unique<GpioPin>(address, OUTPUT_GPIO_MODE, NO_GPIO_EDGE);
    return line->IsValid();
}

bool ClaimLowOutputs(std::span<const PinAddress> addresses, std::span<std::unique_ptr<GpioPin>> lines) {
    for (std::size_t line = 0; line < lines.size(); ++line) {
        lines[line].reset();
        lines[line] = std::make_unique<GpioPin>(addresses[line]);
    }
    return std::all_of(lines.begin(), lines.end(), [](const std::unique_ptr<GpioPin>& line) {
        return line->SetModeAndEdge(OUTPUT_GPIO_MODE, NO_GPIO_EDGE) && line->Write(LOW_GPIO_LEVEL);
    });
}
