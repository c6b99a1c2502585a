#include "Drivers/PwmChannel.h"

#include <algorithm>

#include "Drivers/DeviceFile.h"
#include "Drivers/Print.h"
#include "Drivers/SysfsClaim.h"
#include "Frameworks/Utilities/Truncate.h"

namespace {

constexpr const char* ChipDirectory = "/sys/class/pwm/pwmchip0/";
constexpr const char* CountFile = "/sys/class/pwm/pwmchip0/npwm";
// Only a missing file counts: a value that the kernel refuses goes unnoticed, since the callers rely on a channel that
// continues with a duty of 0.
constexpr SysfsKind Pwm{"/sys/class/pwm/pwmchip0/export", "/sys/class/pwm/pwmchip0/unexport", "unable to lock a pwm",
                        "unable to release a pwm", false};

// Gives a digit that no channel has, so that later operations of a refused object find no directory.
constexpr std::uint8_t NoChannel = 0xFF;

constexpr float NanoSecondsPerSecond = 1e9F;

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

bool PwmChannel::Export() { return SysfsClaim::Export(Pwm, Directory(), Digit()); }

bool PwmChannel::Unexport() { return SysfsClaim::Unexport(Pwm, Directory(), Digit()); }

bool PwmChannel::Enable(bool on) {
    if (!DeviceFile::DirectoryOpens(Directory())) {
        return FailWithOutput(NotLockedYet);
    }
    return SysfsClaim::Write(Pwm, Directory() + "/enable", on ? "1" : "0", "unable to enable a pwm");
}

bool PwmChannel::IsEnabled() const {
    if (!DeviceFile::DirectoryOpens(Directory())) {
        return FailWithError(NotLockedYet);
    }
    std::string text;
    return !DeviceFile::ReadText(Directory() + "/enable", text) || DeviceFile::FirstWord(text) == "1";
}

bool PwmChannel::Set(float frequency, float dutyCycle) {
    const bool locked = DeviceFile::DirectoryOpens(Directory());
    if (!locked) {
        PrintError(NotLockedYet);
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
    if (!SysfsClaim::Write(Pwm, dutyFile, "0", "unable to reset pwm duty cycle")) {
        return false;
    }
    const float period = NanoSecondsPerSecond / frequency;
    // A chip without a period file is left disabled, and the call succeeds.
    if (DeviceFile::WriteText(Directory() + "/period", std::to_string(TruncateTo<std::int32_t>(period))) ==
        DeviceFile::WriteResult::NotOpened) {
        return true;
    }
    const float duty = dutyCycle * period / MaxDutyCycle;
    if (!SysfsClaim::Write(Pwm, dutyFile, std::to_string(TruncateTo<std::int32_t>(duty)),
                           "unable to set pwm duty cycle")) {
        return false;
    }
    return Enable(true);
}

void PwmChannel::Store(float frequency, float dutyCycle) {
    m_frequency = std::clamp(frequency, MinFrequency, MaxFrequency);
    m_dutyCycle = std::clamp(dutyCycle, MinDutyCycle, MaxDutyCycle);
}

std::string PwmChannel::Directory() const { return ChipDirectory + ("pwm" + Digit()); }

std::string PwmChannel::Digit() const { return {static_cast<char>('0' + m_channel)}; }
