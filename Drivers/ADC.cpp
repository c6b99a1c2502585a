#include "Drivers/ADC.h"

#include <array>
#include <cstdio>
#include <locale>
#include <sstream>
#include <string>

#include "Drivers/DeviceFile.h"
#include "Drivers/Print.h"

namespace {

constexpr const char* Directory = "/sys/bus/iio/devices/iio:device0/";
constexpr const char* RawFile = "in_voltage%d_raw";
constexpr const char* ScaleFile = "in_voltage_scale";
constexpr std::size_t NameSize = 100;

constexpr std::uint32_t Inputs = 12;
constexpr float MillivoltsPerVolt = 1024.0F;

// Reads in the "C" locale, as the kernel writes.
template <typename Number>
bool ReadNumber(const std::string& path, Number& number) {
    std::string text;
    if (!DeviceFile::ReadText(path, text)) {
        return false;
    }
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Number value{};
    if (!(stream >> value)) {
        return false;
    }
    number = value;
    return true;
}

}  // namespace

bool ADC::Open(std::uint32_t input) {
    if (input >= Inputs || !DeviceFile::DirectoryOpens(Directory)) {
        return FailWithError("ADC: device does not exist");
    }
    m_input = static_cast<std::int32_t>(input);
    return true;
}

bool ADC::ReadRaw(std::int32_t& counts) const {
    if (m_input < 0) {
        return false;
    }
    std::array<char, NameSize> name{};
    std::snprintf(name.data(), name.size(), RawFile, m_input);
    return ReadNumber(std::string(Directory) + name.data(), counts) || FailWithError("ADC: can't read raw counts");
}

bool ADC::ReadScale(float& scale) const {
    return ReadNumber(std::string(Directory) + ScaleFile, scale) || FailWithError("ADC: can't read the reference");
}

bool ADC::ReadVoltage(float& voltage) const {
    std::int32_t counts = 0;
    float scale = 0.0F;
    if (!ReadRaw(counts) || !ReadScale(scale)) {
        return false;
    }
    // The kernel's millivolts are divided by 1024: the limits of the board's tests were measured this way.
    voltage = static_cast<float>(counts) * scale / MillivoltsPerVolt;
    return true;
}
