#include "Drivers/Adc24BitDriver.h"

#include <pthread.h>

#include <array>

#include "Drivers/ConverterWord.h"
#include "Drivers/MemoryMappedIO.h"
#include "Drivers/Print.h"
#include "Drivers/SpiDevice.h"
#include "Drivers/Wait.h"
#include "Frameworks/Threading/Mutex.h"

namespace {

constexpr std::uint32_t CountChannel = 0;
constexpr std::uint32_t TemperatureChannel = 200;

constexpr std::uint32_t MaxTries = 25;
constexpr std::uint32_t TryMilliseconds = 10;

// Refuses a second lock by the same thread and an unlock without a lock, since both failures are reported.
class CAPABILITY("mutex") CheckedMutex {
public:
    bool Lock() TRY_ACQUIRE(true) { return pthread_mutex_lock(&m_mutex) == 0; }
    bool Unlock() RELEASE() { return pthread_mutex_unlock(&m_mutex) == 0; }

private:
    pthread_mutex_t m_mutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
};

CheckedMutex conversionMutex;

// Made on first use and never deleted, since a thread may still read when the process ends.
SpiDevice& SharedDevice() {
    static auto* const device = new SpiDevice;
    return *device;
}

bool WaitForEndOfConversion() {
    for (std::uint32_t tries = 0; tries < MaxTries; ++tries) {
        SpinFor(TryMilliseconds);
        if (MemoryMappedIO::ReadPin(OnBoard::ConverterEnd) == LOW_GPIO_LEVEL) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool Adc24BitDriver::Read(bool convert) {
    SpiDevice& device = SharedDevice();
    if (!m_valid || !conversionMutex.Lock()) {
        if (m_valid) {
            PrintOutput("24 Bit ADC Driver: ADC mutex lock failed");
        }
        return FailWithOutput("24 Bit ADC Driver: ADC mutex unlock failed");
    }
    const bool result = ReadLocked(device, convert);
    if (!conversionMutex.Unlock()) {
        PrintOutput("24 Bit ADC Driver: ADC mutex unlock failed");
    }
    return result;
}

bool Adc24BitDriver::ReadLocked(SpiDevice& device, bool convert) {
    if (!StartConversion(device)) {
        return false;
    }
    const bool ended = WaitForEndOfConversion();
    if (!MemoryMappedIO::WritePin(OnBoard::ConverterChipSelect, HIGH_GPIO_LEVEL)) {
        return FailWithOutput("24 Bit ADC Driver: Setting chip select high failed");
    }
    if (!ended) {
        m_raw = NoConverterReading;
        return FailWithOutput("24 Bit ADC Driver: Conversion did not finish in allotted time");
    }
    ReadResult(device);
    return !convert || Convert();
}

bool Adc24BitDriver::StartConversion(SpiDevice& device) const {
    const std::uint16_t command = ConverterCommandWord(m_channel);
    if (!device.Write(&command, sizeof command)) {
        return FailWithOutput("24 Bit ADC Driver: SPI write failed");
    }
    return MemoryMappedIO::WritePin(OnBoard::ConverterChipSelect, LOW_GPIO_LEVEL) ||
           FailWithOutput("24 Bit ADC Driver: Setting chip select low failed");
}

// A failed read is reported and leaves the zeros of the buffer, which count as the converter's lower limit, as in the
// detector's own path.
void Adc24BitDriver::ReadResult(SpiDevice& device) {
    std::array<std::uint16_t, 2> words{};
    if (!device.Read(words.data(), sizeof words)) {
        PrintOutput("24 Bit ADC Driver: SPI read failed");
    }
    const std::uint32_t result = static_cast<std::uint32_t>(words[0]) << 16 | words[1];
    m_raw = ConverterReading(result);
}

bool Adc24BitDriver::Convert() {
    if (!m_valid || m_raw == NoConverterReading) {
        return FailWithOutput("24 Bit ADC Driver: ADC reading error or object not valid");
    }
    m_value = ConverterCount(m_raw);
    if (m_channel == TemperatureChannel) {
        m_value = static_cast<std::int32_t>((static_cast<float>(m_value) * 2.5F / 1570.0F - 273.0F) * 100.0F);
        return true;
    }
    return m_channel == CountChannel;
}
