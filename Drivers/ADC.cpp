#include "Drivers/ADC.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
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

// The number at the start of a text. False if there is none or it is too large.
bool ReadNumber(const std::string& text, std::int32_t& number) {
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    using Limits = std::numeric_limits<std::int32_t>;
    if (end == text.c_str() || errno == ERANGE || value < Limits::min() || value > Limits::max()) {
        return false;
    }
    number = static_cast<std::int32_t>(value);
    return true;
}

// Decimal alone: strtof would take "inf", "nan" and hexadecimal numbers too.
bool ReadNumber(const std::string& text, float& number) {
    const std::string decimal = text.substr(0, text.find_first_not_of(" \t\n0123456789.eE+-"));
    char* end = nullptr;
    const float value = std::strtof(decimal.c_str(), &end);
    const bool isCut = decimal.find_first_of("eE") == static_cast<std::size_t>(end - decimal.c_str());
    if (end == decimal.c_str() || isCut || !std::isfinite(value)) {
        return false;
    }
    number = value;
    return true;
}

template <typename Number>
bool ReadNumberOf(const std::string& path, Number& number) {
    std::string text;
    return DeviceFile::ReadText(path, text) && ReadNumber(text, number);
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
    return ReadNumberOf(std::string(Directory) + name.data(), counts) || FailWithError("ADC: can't read raw counts");
}

bool ADC::ReadScale(float& scale) const {
    return ReadNumberOf(std::string(Directory) + ScaleFile, scale) || FailWithError("ADC: can't read the reference");
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
