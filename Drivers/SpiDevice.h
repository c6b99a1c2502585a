// One device on the SPI bus, open from construction to destruction. Words of more than 8 bits are in the
// processor's byte order. Failure texts go to the error stream. One thread at a time.
#pragma once

#include <cstdint>
#include <string>

class SpiDevice {
public:
    // The 24-bit converter: mode 0, 3 MHz, 16 bits a word.
    SpiDevice();
    // Speed in hertz.
    SpiDevice(const std::string& path, std::uint8_t mode, std::uint32_t speed, std::uint8_t bitsPerWord);
    SpiDevice(const SpiDevice&) = delete;
    SpiDevice& operator=(const SpiDevice&) = delete;
    ~SpiDevice();

    // Whether opening and all settings succeeded.
    bool IsOpen() const { return m_isOpen; }

    // Lengths in bytes. True if the whole length went.
    bool Read(void* buffer, std::uint32_t length) const;
    bool Write(const void* buffer, std::uint32_t length) const;

    // The bytes received replace the bytes sent, in one transfer, or in one transfer per word (1 byte up to 8 bits a
    // word, else 2 bytes; at most 511 words).
    bool Transfer(void* buffer, std::uint32_t length) const;
    bool TransferWords(void* buffer, std::uint32_t length) const;

private:
    bool Open(const std::string& path);
    bool Configure();

    std::uint8_t m_mode = 0;
    std::uint8_t m_bitsPerWord = 16;
    std::uint32_t m_speed = 3000000;
    std::int32_t m_descriptor = -1;
    bool m_isOpen = false;
};
