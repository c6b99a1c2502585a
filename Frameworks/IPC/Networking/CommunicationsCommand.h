// The header of a frame on the test link: 32 bytes in their wire form, each number low byte first. One thread at a
// time.
#pragma once

#include <array>
#include <cstdint>

#include "Frameworks/Utilities/LittleEndian.h"
#include "Frameworks/Utilities/TimeInfo.h"

class CommunicationsCommand {
public:
    // The wire form.
    static constexpr std::size_t Size = 32;
    using Image = std::array<std::uint8_t, Size>;

    static constexpr std::uint16_t WriteFlag = 0x0001;  // the command carries data to be stored
    static constexpr std::uint16_t RawFlag = 0x0004;    // the answer must be raw bytes

    CommunicationsCommand();  // command 10001, all else 0
    // In a copy the reserved bytes are 0.
    CommunicationsCommand(const CommunicationsCommand& other) { *this = other; }
    CommunicationsCommand& operator=(const CommunicationsCommand& other);
    virtual ~CommunicationsCommand() = default;

    void Clear() { m_image.fill(0); }

    // The wire form, for sending from and receiving into.
    const Image& GetImage() const { return m_image; }
    Image& GetImage() { return m_image; }

    std::uint32_t GetSourceAddress() const { return Get<std::uint32_t>(SourceAddress); }
    void SetSourceAddress(std::uint32_t address) { Set(SourceAddress, address); }
    std::uint32_t GetDestinationAddress() const { return Get<std::uint32_t>(DestinationAddress); }
    void SetDestinationAddress(std::uint32_t address) { Set(DestinationAddress, address); }
    std::uint8_t GetSpare() const { return Get<std::uint8_t>(Spare); }
    void SetSpare(std::uint8_t spare) { Set(Spare, spare); }
    void CopyAddresses(const CommunicationsCommand& other);  // and the spare byte
    void SwapAddresses();                                    // source and destination

    std::uint16_t GetFlags() const { return Get<std::uint16_t>(Flags); }
    void SetFlags(std::uint16_t flags) { Set(Flags, flags); }
    bool IsWrite() const { return (GetFlags() & WriteFlag) != 0; }
    bool IsRaw() const { return (GetFlags() & RawFlag) != 0; }

    std::uint16_t GetCommand() const { return Get<std::uint16_t>(Command); }
    void SetCommand(std::uint16_t command) { Set(Command, command); }

    // Of a written payload, without its CRC; a repeat count in a request that writes nothing; in a reply the size of
    // all that follows the header.
    std::uint32_t GetLength() const { return Get<std::uint32_t>(Length); }
    void SetLength(std::uint32_t length) { Set(Length, length); }  // the low 24 bits

    // A whole part of 16 bits and ten-thousandths; setting drops smaller parts.
    float GetValue() const;
    void SetValue(float value);
    // The value in seconds as milliseconds, truncated. Exact: as a float, 0.251 * 1000 gives 250.
    std::uint32_t GetMilliseconds() const { return GetWhole() * 1000U + GetFraction() / 10U; }
    std::uint16_t GetWhole() const { return Get<std::uint16_t>(Whole); }
    std::uint16_t GetFraction() const { return Get<std::uint16_t>(Fraction); }

    std::uint32_t GetSeconds() const { return Get<std::uint32_t>(Seconds); }
    std::uint32_t GetNanoSeconds() const { return Get<std::uint32_t>(NanoSeconds); }
    // Time of sending.
    void SetTime(const TimeInfo& time);

private:
    struct Field {
        std::size_t offset;
        std::size_t size;
    };

    static constexpr Field SourceAddress = {0, 4};
    static constexpr Field DestinationAddress = {4, 4};
    static constexpr Field Spare = {8, 1};
    static constexpr Field Flags = {10, 2};
    static constexpr Field Command = {12, 2};
    static constexpr Field Length = {14, 3};
    static constexpr Field Whole = {18, 2};
    static constexpr Field Fraction = {20, 2};
    static constexpr Field Seconds = {24, 4};
    static constexpr Field NanoSeconds = {28, 4};

    template <typename Number>
    Number Get(const Field& field) const {
        return static_cast<Number>(GetLittleEndian(&m_image[field.offset], field.size));
    }
    void Set(const Field& field, std::uint32_t value) { PutLittleEndian(&m_image[field.offset], field.size, value); }

    Image m_image{};
};
