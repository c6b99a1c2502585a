#include "Drivers/SpiDevice.h"

#include <fcntl.h>
#include <linux/spi/spidev.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <span>

#include "Drivers/Board.h"
#include "Drivers/Print.h"

namespace {

// The number of transfers that fit in the length field of one request.
constexpr std::size_t MaxTransfers = ((1U << _IOC_SIZEBITS) - 1) / sizeof(spi_ioc_transfer);
constexpr const char* TransferFailure = "Problem transmitting spi data..ioctl";

std::uint64_t KernelAddress(void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

// SPI_IOC_MESSAGE for a number that is known at run time only.
unsigned long MessageRequest(std::size_t transfers) {
    return _IOC(_IOC_WRITE, SPI_IOC_MAGIC, 0, transfers * sizeof(spi_ioc_transfer));
}

bool Send(int descriptor, spi_ioc_transfer* transfers, std::size_t count) {
    const bool sent = ioctl(descriptor, MessageRequest(count), transfers) >= 0;
    if (!sent) {
        PrintError(TransferFailure);
    }
    return sent;
}

}  // namespace

SpiDevice::SpiDevice() { m_isOpen = Open(OnBoard::ConverterDevice); }

SpiDevice::SpiDevice(const std::string& path, std::uint8_t mode, std::uint32_t speed, std::uint8_t bitsPerWord)
    : m_mode(mode), m_bitsPerWord(bitsPerWord), m_speed(speed) {
    m_isOpen = Open(path);
}

SpiDevice::~SpiDevice() {
    if (m_descriptor >= 0 && close(m_descriptor) != 0) {
        PrintError("Could not close SPI device");
    }
}

bool SpiDevice::Open(const std::string& path) {
    m_descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (m_descriptor < 0) {
        m_descriptor = -1;
        PrintError("could not open SPI device");
        return false;
    }
    return Configure();
}

// Each setting is written and read back, so that the members hold what the bus really does. A device that refuses one
// stays open with its present settings.
bool SpiDevice::Configure() {
    const struct {
        unsigned long request;
        void* value;
        const char* failure;
    } settings[] = {
        {SPI_IOC_WR_MODE, &m_mode, "Could not set SPIMode (WR)...ioctl fail"},
        {SPI_IOC_RD_MODE, &m_mode, "Could not set SPIMode (RD)...ioctl fail"},
        {SPI_IOC_WR_BITS_PER_WORD, &m_bitsPerWord, "Could not set SPI bitsPerWord (WR)...ioctl fail"},
        {SPI_IOC_RD_BITS_PER_WORD, &m_bitsPerWord, "Could not set SPI bitsPerWord(RD)...ioctl fail"},
        {SPI_IOC_WR_MAX_SPEED_HZ, &m_speed, "Could not set SPI speed (WR)...ioctl fail"},
        {SPI_IOC_RD_MAX_SPEED_HZ, &m_speed, "Could not set SPI speed (RD)...ioctl fail"},
    };
    for (const auto& setting : settings) {
        if (ioctl(m_descriptor, setting.request, setting.value) < 0) {
            return FailWithError(setting.failure);
        }
    }
    return true;
}

bool SpiDevice::Read(void* buffer, std::uint32_t length) const {
    return m_descriptor >= 0 && read(m_descriptor, buffer, length) == static_cast<ssize_t>(length);
}

bool SpiDevice::Write(const void* buffer, std::uint32_t length) const {
    return m_descriptor >= 0 && write(m_descriptor, buffer, length) == static_cast<ssize_t>(length);
}

bool SpiDevice::Transfer(void* buffer, std::uint32_t length) const {
    spi_ioc_transfer transfer{};
    transfer.tx_buf = KernelAddress(buffer);
    transfer.rx_buf = KernelAddress(buffer);
    transfer.len = length;
    transfer.speed_hz = m_speed;
    transfer.bits_per_word = m_bitsPerWord;
    return Send(m_descriptor, &transfer, 1);
}

bool SpiDevice::TransferWords(void* buffer, std::uint32_t length) const {
    const std::uint32_t wordSize = m_bitsPerWord < 9 ? 1 : 2;
    const std::size_t count = length / wordSize;
    if (length % wordSize != 0 || count > MaxTransfers) {
        return FailWithError(TransferFailure);
    }
    std::array<spi_ioc_transfer, MaxTransfers> transfers{};
    auto* word = static_cast<std::byte*>(buffer);
    for (spi_ioc_transfer& transfer : std::span(transfers).first(count)) {
        transfer.tx_buf = KernelAddress(word);
        transfer.rx_buf = KernelAddress(word);
        transfer.len = wordSize;
        transfer.speed_hz = m_speed;
        transfer.bits_per_word = m_bitsPerWord;
        word += wordSize;
    }
    return Send(m_descriptor, transfers.data(), count);
}
