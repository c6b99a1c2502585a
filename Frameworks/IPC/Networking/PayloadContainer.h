// The payload of a frame on the test link: data bytes, then their CRC-32, low byte first. The append operations fill it
// for sending, a socket fills it with received bytes. One thread at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "Frameworks/Utilities/StdString.h"
#include "Frameworks/Utilities/TimeInfo.h"

class PayloadContainer {
public:
    static constexpr std::size_t CRCSize = 4;

    PayloadContainer() = default;
    explicit PayloadContainer(std::uint32_t length) : m_length(length) {}
    PayloadContainer(const PayloadContainer&) = default;
    PayloadContainer& operator=(const PayloadContainer&) = default;
    virtual ~PayloadContainer() = default;

    // No data, no CRC.
    void Reset();

    std::uint32_t GetLength() const { return m_length; }  // of the data
    std::uint32_t GetCRC() const { return m_crc; }        // the last one computed; all bits set after a reset

    // For sending: the data and their CRC, length + 4 bytes.
    const std::vector<std::uint8_t>& WireForm();

    // The received bytes, at most length + 4. Missing bytes count as zero but take no memory before DataForm: a peer
    // that announces much and sends little can't fill the memory.
    void SetReceived(std::vector<std::uint8_t> bytes);

    // After reception: the data, always `length` bytes.
    const std::vector<std::uint8_t>& DataForm();
    std::uint32_t ComputeCRC();  // of the data form
    bool VerifyCRC();            // of the data form, against the bytes after it
    StdString Text();            // the data form, zero bytes included

    void AppendTimeStamp(const TimeInfo& time);                // seconds and nanoseconds, four bytes each
    void AppendText(const StdString& text);                    // the present time, the text, one zero byte
    void AppendBytes(const std::vector<std::uint8_t>& bytes);  // the present time, the bytes

protected:
    // The low `size` bytes, low byte first.
    void AppendNumber(std::uint64_t value, std::size_t size);

private:
    void AppendData(const std::uint8_t* data, std::size_t size);

    std::uint32_t m_length = 0;
    std::vector<std::uint8_t> m_wire;
    std::vector<std::uint8_t> m_data;
    std::uint32_t m_crc = 0xFFFFFFFF;
    StdString m_text;
};
