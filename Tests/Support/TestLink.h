// The frames of the test link as a test server writes and reads them, byte by byte and without the product's own
// classes.
#pragma once

#include <string>

#include "Tests/Support/RawPeer.h"

inline std::uint32_t NumberAt(const Bytes& bytes, std::size_t offset, std::size_t size = 4) {
    std::uint32_t number = 0;
    for (std::size_t at = 0; at < size; ++at) {
        number |= static_cast<std::uint32_t>(bytes.at(offset + at)) << (8 * at);
    }
    return number;
}

inline void PutNumber(Bytes& bytes, std::size_t offset, std::size_t size, std::uint64_t number) {
    for (std::size_t at = 0; at < size; ++at) {
        bytes.at(offset + at) = static_cast<std::uint8_t>(number >> (8 * at));
    }
}

// Bit by bit.
inline std::uint32_t ChecksumOf(const Bytes& bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

// A request. Addresses and spare byte are never 0, so that an echo of them would show.
class Frame {
public:
    explicit Frame(int command) : m_bytes(32, 0) {
        PutNumber(m_bytes, 0, 4, 0x0A0B0C0D);
        PutNumber(m_bytes, 4, 4, 0x1A1B1C1D);
        m_bytes[8] = 0x77;
        PutNumber(m_bytes, 12, 2, static_cast<std::uint64_t>(command));
    }

    Frame& Flags(std::uint16_t flags) { return Put(10, 2, flags); }
    Frame& Count(std::uint32_t count) { return Put(14, 3, count); }
    Frame& Value(std::uint16_t whole, std::uint16_t tenThousandths = 0) {
        return Put(18, 2, whole).Put(20, 2, tenThousandths);
    }

    // With bit 0, the length and a checksum.
    Frame& Write(const std::string& text) {
        Flags(1).Count(static_cast<std::uint32_t>(text.size()));
        const Bytes data(text.begin(), text.end());
        m_bytes.insert(m_bytes.end(), data.begin(), data.end());
        m_bytes.resize(m_bytes.size() + 4);
        PutNumber(m_bytes, m_bytes.size() - 4, 4, ChecksumOf(data));
        return *this;
    }

    operator const Bytes&() const { return m_bytes; }

private:
    Frame& Put(std::size_t offset, std::size_t size, std::uint32_t number) {
        PutNumber(m_bytes, offset, size, number);
        return *this;
    }

    Bytes m_bytes;
};

struct Reply {
    Bytes header;
    Bytes data;  // without the checksum, which has been looked at
};

// One whole reply. Everything in its header but length and time is 0, and its checksum fits.
inline Reply ReceiveReply(const RawConnection& peer) {
    Reply reply{peer.Receive(32), {}};
    if (reply.header.size() != 32) {
        ADD_FAILURE() << "the link ended";
        return reply;
    }
    Bytes rest = reply.header;
    PutNumber(rest, 14, 3, 0);
    PutNumber(rest, 24, 8, 0);
    EXPECT_EQ(rest, Bytes(32, 0));
    reply.data = peer.Receive(NumberAt(reply.header, 14, 3));
    if (reply.data.size() < 4) {
        ADD_FAILURE() << "no checksum";
        return reply;
    }
    const std::uint32_t checksum = NumberAt(reply.data, reply.data.size() - 4);
    reply.data.resize(reply.data.size() - 4);
    EXPECT_EQ(checksum, ChecksumOf(reply.data));
    return reply;
}

inline Reply Ask(const RawConnection& peer, const Bytes& request) {
    peer.Send(request);
    return ReceiveReply(peer);
}

// The data after the time stamp.
inline std::string BehindStamp(const Reply& reply) {
    EXPECT_GE(reply.data.size(), 8U);
    return reply.data.size() < 8 ? "" : std::string(reply.data.begin() + 8, reply.data.end());
}

// A text as replies carry it.
inline std::string Text(const std::string& text) { return text + '\0'; }
