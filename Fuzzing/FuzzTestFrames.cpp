// Reads headers and payloads of the test link from random bytes, in pieces as a network may deliver them, and checks
// all fields. The input is the peer's data: each read first takes a byte, the number of bytes that arrive; 255 for all,
// 254 for a broken connection.
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "Frameworks/IPC/Networking/TCPSocket.h"
#include "Frameworks/Utilities/CRC32.h"
#include "Fuzzing/Require.h"

namespace {

constexpr int MaxFrames = 8;
constexpr std::uint32_t LongPayload = 65536;  // a longer one takes the time of hundreds of runs
constexpr std::size_t InputForLongPayload = 40;
constexpr std::uint8_t All = 255;
constexpr std::uint8_t Broken = 254;

const std::uint8_t* input = nullptr;
std::size_t left = 0;

void LookAtHeader(const CommunicationsCommand& command) {
    CommunicationsCommand copy(command);
    Require(copy.GetCommand() == command.GetCommand() && copy.GetLength() == command.GetLength(), "a copy is the same");
    Require(command.GetLength() <= 0xFFFFFF, "a length has 24 bits");
    Require(command.GetValue() >= 0.0F && command.GetValue() < 65543.0F, "a value is that of its two parts");
    copy.SetValue(command.GetValue());
    copy.SwapAddresses();
    Require(copy.GetSourceAddress() == command.GetDestinationAddress(), "addresses are swapped");
}

void LookAtPayload(PayloadContainer& payload) {
    if (payload.GetLength() > LongPayload) {
        return;
    }
    Require(payload.DataForm().size() == payload.GetLength(), "the data have their length");
    Require(payload.Text().Text().size() == payload.GetLength(), "the text has the length of the data");
    const bool isSound = payload.VerifyCRC();
    const std::uint32_t crc = payload.ComputeCRC();
    Require(crc == CRC32().Compute(payload.DataForm()), "the checksum is that of the data");
    PayloadContainer again(payload);
    Require(again.WireForm().size() == std::size_t{payload.GetLength()} + 4, "the wire form ends in a checksum");
    Require(again.VerifyCRC(), "a computed checksum is right");
    Require(!isSound || again.GetCRC() == crc, "and equals a received right one");
    again.AppendText(payload.Text());
    Require(again.VerifyCRC(), "also after a text is appended");
}

}  // namespace

// Replaces the system's.
extern "C" ssize_t recv(int /*file*/, void* data, std::size_t size, int /*flags*/) {
    if (left == 0) {
        return 0;
    }
    const std::uint8_t share = *input++;
    --left;
    if (share == Broken) {
        errno = ECONNRESET;
        return -1;
    }
    const std::size_t count = std::min({left, size, share == All ? size : std::size_t{share}});
    std::memcpy(data, input, count);
    input += count;
    left -= count;
    return static_cast<ssize_t>(count);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    input = data;
    left = size;
    TCPSocket socket;
    for (int frame = 0; frame < MaxFrames; ++frame) {
        const std::unique_ptr<CommunicationsCommand> command = socket.RecieveCommand();
        if (command == nullptr) {
            return 0;
        }
        LookAtHeader(*command);
        if (!command->IsWrite() || command->GetLength() == 0) {
            continue;
        }
        if (command->GetLength() > LongPayload && size > InputForLongPayload) {
            return 0;
        }
        const std::unique_ptr<PayloadContainer> payload = socket.RecievePayload(command->GetLength());
        if (payload != nullptr) {
            Require(payload->GetLength() == command->GetLength(), "a payload has the length of its header");
            LookAtPayload(*payload);
        }
    }
    return 0;
}
