#include "Drivers/GpioPin.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>

#include "Drivers/DeviceFile.h"
#include "Drivers/Print.h"

using DeviceFile::WriteResult;

namespace {

constexpr const char* GpioDirectory = "/sys/class/gpio/";
constexpr const char* ExportFile = "/sys/class/gpio/export";
constexpr const char* UnexportFile = "/sys/class/gpio/unexport";

constexpr const char* AlreadyUsed = "already used\n";
constexpr const char* NotUsedYet = "not used yet\n";
constexpr const char* NotLockedYet = "not locked yet\n";

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

bool WriteOrPrint(const std::string& path, const std::string& text, const char* failure) {
    const bool written = DeviceFile::WriteText(path, text) == WriteResult::Written;
    if (!written) {
        PrintError(failure);
    }
    return written;
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

GpioPin::GpioPin(std::uint32_t bank, std::uint32_t pin) : m_pin(pin), m_bank(bank) {
    if (pin >= PinsPerBank) {
        PrintOutput("wrong gpio pin");
        return;
    }
    Claim(INPUT_GPIO_MODE, NO_GPIO_EDGE);
}

GpioPin::GpioPin(std::uint32_t bank, std::uint32_t pin, GpioMode mode, GpioEdge edge) : m_pin(pin), m_bank(bank) {
    if (pin >= PinsPerBank) {
        PrintError("wrong gpio pin");
        return;
    }
    Claim(mode, edge);
}

// A line that another object has claimed is left as it is, but released all the same: whoever ends last finds it gone.
GpioPin::~GpioPin() { m_valid = Unexport(); }

void GpioPin::Claim(GpioMode mode, GpioEdge edge) { m_valid = Export() && SetModeAndEdge(mode, edge); }

bool GpioPin::Export() {
    if (IsLocked()) {
        return FailWithError(AlreadyUsed);
    }
    return WriteOrPrint(ExportFile, ExportNumber(), "unable to lock a gpio");
}

bool GpioPin::Unexport() {
    if (!IsLocked()) {
        return FailWithError(NotUsedYet);
    }
    return WriteOrPrint(UnexportFile, ExportNumber(), "unable to release a gpio");
}

bool GpioPin::SetDirection(GpioMode mode) {
    if (!IsLocked()) {
        return FailWithError(NotLockedYet);
    }
    if (!WriteOrPrint(Directory() + "/direction", mode == OUTPUT_GPIO_MODE ? "out" : "in",
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
    if (!WriteOrPrint(Directory() + "/edge", EdgeText(edge), "unable to set the gpio trigger")) {
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
    return WriteOrPrint(Directory() + "/value", level == HIGH_GPIO_LEVEL ? "1" : "0", "unable to set the gpio value");
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
    return std::string(GpioDirectory) + "pio" + static_cast<char>('A' + m_bank) + std::to_string(m_pin);
}

std::string GpioPin::ExportNumber() const { return std::to_string(m_bank * PinsPerBank + m_pin); }

bool GpioPin::IsLocked() const { return DeviceFile::DirectoryOpens(Directory()); }
