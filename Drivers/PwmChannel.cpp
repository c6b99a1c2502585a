#include "Drivers/PwmChannel.h"

#include <algorithm>

#include "Drivers/DeviceFile.h"
#include "Drivers/Print.h"
#include "Frameworks/Utilities/Truncate.h"

using DeviceFile::WriteResult;

namespace {

constexpr const char* ChipDirectory = "/sys/class/pwm/pwmchip0/";
constexpr const char* CountFile = "/sys/class/pwm/pwmchip0/npwm";
constexpr const char* PwmExportFile = "/sys/class/pwm/pwmchip0/export";
constexpr const char* PwmUnexportFile = "/sys/class/pwm/pwmchip0/unexport";

constexpr const char* PwmAlreadyUsed = "already used\n";
constexpr const char* PwmNotUsedYet = "not used yet\n";
constexpr const char* PwmNotLockedYet = "not locked yet\n";

// Makes a digit that no channel has, so that a refused object meets no directory in its later operations.
constexpr std::uint8_t NoChannel = 0xFF;

constexpr float NanoSecondsPerSecond = 1e9F;

// Only a missing file counts: a value that the kernel refuses goes unnoticed, since the callers count on a channel that
// goes on with a duty of 0.
bool WriteIfThere(const std::string& path, const std::string& text) {
    return DeviceFile::WriteText(path, text) != WriteResult::NotOpened;
}

bool PwmWriteOrPrint(const std::string& path, const std::string& text, const char* failure) {
    const bool written = WriteIfThere(path, text);
    if (!written) {
        PrintError(failure);
    }
    return written;
}

}  // namespace

PwmChannel::PwmChannel(std::uint8_t channel) : m_channel(NoChannel) { m_valid = Claim(channel); }

PwmChannel::PwmChannel(std::uint8_t channel, float frequency, float dutyCycle) : m_channel(NoChannel) {
    m_valid = Claim(channel);
    if (m_channel == NoChannel) {
        return;
    }
    Store(frequency, dutyCycle);
    m_valid = m_valid && Set(frequency, dutyCycle);
}

PwmChannel::~PwmChannel() {
    m_valid = Enable(false);
    if (m_valid) {
        m_valid = Unexport();
    }
}

bool PwmChannel::Claim(std::uint8_t channel) {
    if (channel >= ChannelCount()) {
        return FailWithError("wrong pwm channel");
    }
    m_channel = channel;
    return Export();
}

std::uint32_t PwmChannel::ChannelCount() {
    std::string text;
    DeviceFile::ReadText(CountFile, text);
    const std::string word = DeviceFile::FirstWord(text);
    return word.empty() ? 0U : static_cast<unsigned char>(word.front());
}

bool PwmChannel::Export() {
    if (DeviceFile::DirectoryOpens(Directory())) {
        return FailWithError(PwmAlreadyUsed);
    }
    return PwmWriteOrPrint(PwmExportFile, Digit(), "unable to lock a pwm");
}

bool PwmChannel::Unexport() {
    if (!DeviceFile::DirectoryOpens(Directory())) {
        return FailWithError(PwmNotUsedYet);
    }
    return PwmWriteOrPrint(PwmUnexportFile, Digit(), "unable to release a pwm");
}

bool PwmChannel::Enable(bool on) {
    if (!DeviceFile::DirectoryOpens(Directory())) {
        return FailWithOutput(PwmNotLockedYet);
    }
    return PwmWriteOrPrint(Directory() + "/enable", on ? "1" : "0", "unable to enable a pwm");
}

bool PwmChannel::IsEnabled() const {
    if (!DeviceFile::DirectoryOpens(Directory())) {
        return FailWithError(PwmNotLockedYet);
    }
    std::string text;
    return !DeviceFile::ReadText(Directory() + "/enable", text) || DeviceFile::FirstWord(text) == "1";
}

bool PwmChannel::Set(float frequency, float dutyCycle) {
    const bool locked = DeviceFile::DirectoryOpens(Directory());
    if (!locked) {
        PrintError(PwmNotLockedYet);
    }
    if (!locked || (IsEnabled() && !Enable(false))) {
        return FailWithError("unable to set pwm frequency");
    }
    Store(frequency, dutyCycle);
    return WritePeriodAndDuty(frequency, dutyCycle);
}

bool PwmChannel::WritePeriodAndDuty(float frequency, float dutyCycle) {
    const std::string dutyFile = Directory() + "/duty_cycle";
    // The kernel refuses a period below the duty that it has.
    if (!PwmWriteOrPrint(dutyFile, "0", "unable to reset pwm duty cycle")) {
        return false;
    }
    const float period = NanoSecondsPerSecond / frequency;
    // A chip without periods is left disabled, and that counts as set.
    if (!WriteIfThere(Directory() + "/period", std::to_string(TruncateTo<std::int32_t>(period)))) {
        return true;
    }
    const float duty = dutyCycle * period / HighestDutyCycle;
    if (!PwmWriteOrPrint(dutyFile, std::to_string(TruncateTo<std::int32_t>(duty)), "unable to set pwm duty cycle")) {
        return false;
    }
    return Enable(true);
}

void PwmChannel::Store(float frequency, float dutyCycle) {
    m_frequency = std::clamp(frequency, LowestFrequency, HighestFrequency);
    m_dutyCycle = std::clamp(dutyCycle, LowestDutyCycle, HighestDutyCycle);
}

std::string PwmChannel::Directory() const { return ChipDirectory + ("pwm" + Digit()); }

std::string PwmChannel::Digit() const { return {static_cast<char>('0' + m_channel)}; }
