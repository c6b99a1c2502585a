// The SPI bus with the 24-bit converter. A command word starts a conversion; the reading is taken at its end and
// returned by the next read.
#include <linux/spi/spidev.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr std::size_t WordSize = 2;
constexpr std::uint32_t NotReady = 0xFFFFFFFF;
constexpr std::uint32_t ReadingMask = 0x1FFFFFF;  // 25 bits; the highest is set for a value of 0 or more
constexpr int ReadingShift = 5;
constexpr int TemperatureChannel = 200;
constexpr std::uint16_t TemperatureCommand = 0xA0C0;

std::uint32_t WordsOf(std::int32_t count) {
    constexpr std::int32_t SignBit = 0x1000000;
    return (static_cast<std::uint32_t>(count + SignBit) & ReadingMask) << ReadingShift;
}

int ChannelOf(std::uint16_t command) {
    constexpr unsigned ChannelShift = 8;
    constexpr unsigned ChannelMask = 0x1F;
    return command == TemperatureCommand ? TemperatureChannel : static_cast<int>(command >> ChannelShift & ChannelMask);
}

const SpiAnswer* NextAnswer(SpiScript& script) {
    return script.next < script.count ? &script.answers[script.next++] : nullptr;
}

void StartConversion(BoardState& state, std::uint16_t command) {
    SpiState& spi = state.spi;
    spi.lastCommand = command;
    ++spi.commands;
    spi.converting = true;
    spi.result = NotReady;
    spi.conversionEnds = MonotonicNow(state.clock) + spi.conversionMilliseconds * (NanoSecondsPerSecond / 1000);
}

// Hexadecimal words as on the bus; an odd last byte alone.
void PutWords(Buffer& text, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i + WordSize <= size; i += WordSize) {
        std::uint16_t word = 0;
        std::memcpy(&word, bytes + i, WordSize);
        Put(text, "%s%04x", i == 0 ? "" : " ", static_cast<unsigned>(word));
    }
    if (size % WordSize != 0) {
        Put(text, "%s%02x", size == 1 ? "" : " ", static_cast<unsigned>(bytes[size - 1]));
    }
}

void TraceWords(BoardState& state, const char* act, const void* data, std::size_t size, int error) {
    char space[TraceTextLength] = {};
    Buffer text{space, sizeof(space)};
    PutWords(text, data, size);
    Trace(state, error, "spi %s%s%s", act, text.used > 0 ? " " : "", space);
}

void TakeCommand(BoardState& state, const void* data, std::size_t size) {
    if (size >= WordSize) {
        std::uint16_t command = 0;
        std::memcpy(&command, data, WordSize);
        StartConversion(state, command);
    }
}

// The words of the next answer, the first in the high half. A short transfer reduces `limit` to the bytes it moves.
int AnswerWords(BoardState& state, std::uint32_t& words, std::size_t& limit) {
    SpiState& spi = state.spi;
    const SpiAnswer* scripted = NextAnswer(spi.reads);
    SpiAnswer answer = scripted != nullptr ? *scripted : SpiAnswer::Raw(spi.result);
    if (scripted == nullptr && FaultActive(state, "spi-echo")) {
        answer = SpiAnswer::Echo();
    } else if (scripted == nullptr && FaultActive(state, "spi-short")) {
        answer = SpiAnswer::Short(limit / 2);
    }
    words = answer.kind == SpiAnswer::Kind::Echo ? std::uint32_t{spi.lastCommand} << 16U : answer.words;
    if (answer.kind == SpiAnswer::Kind::Short) {
        words = spi.result;
        limit = std::min(limit, answer.bytes);
    }
    return answer.kind == SpiAnswer::Kind::Fail ? answer.error : 0;
}

void StoreWords(std::uint32_t words, void* data, std::size_t size) {
    const std::uint16_t answer[] = {static_cast<std::uint16_t>(words >> 16U), static_cast<std::uint16_t>(words)};
    std::memset(data, 0, size);
    std::memcpy(data, answer, std::min(size, sizeof(answer)));
}

int Transfer(BoardState& state, const spi_ioc_transfer& transfer, int& moved) {
    constexpr std::size_t MaxLength = 4096;  // of the kernel's driver
    if (transfer.len > MaxLength) {
        return EMSGSIZE;
    }
    char sent[TraceTextLength] = {};
    char got[TraceTextLength] = {};
    Buffer sentText{sent, sizeof(sent)};
    Buffer gotText{got, sizeof(got)};
    std::uint32_t words = 0;
    std::size_t limit = transfer.len;
    const int error = AnswerWords(state, words, limit);
    if (transfer.tx_buf != 0) {
        const void* out = std::bit_cast<const void*>(static_cast<std::uintptr_t>(transfer.tx_buf));
        PutWords(sentText, out, transfer.len);
        TakeCommand(state, out, transfer.len);
    }
    if (error == 0 && transfer.rx_buf != 0) {
        void* in = std::bit_cast<void*>(static_cast<std::uintptr_t>(transfer.rx_buf));
        StoreWords(words, in, transfer.len);
        PutWords(gotText, in, transfer.len);
    }
    moved += static_cast<int>(limit);
    Trace(state, error, "spi transfer %s >%s%s", sent, error == 0 ? " " : "", got);
    return error;
}

// SPI_IOC_MESSAGE(n): type 'k', number 0, size n transfers.
int Message(BoardState& state, unsigned long request, void* argument, int& result) {
    const std::size_t size = _IOC_SIZE(request);
    if (size % sizeof(spi_ioc_transfer) != 0) {
        return EINVAL;
    }
    const auto* bytes = static_cast<const unsigned char*>(argument);
    for (std::size_t i = 0; i < size; i += sizeof(spi_ioc_transfer)) {
        spi_ioc_transfer transfer;
        std::memcpy(&transfer, bytes + i, sizeof(transfer));
        const int error = Transfer(state, transfer, result);
        if (error != 0) {
            return error;
        }
    }
    return 0;
}

template <typename Value>
int Setting(BoardState& state, unsigned long request, void* argument, Value& setting) {
    if (_IOC_DIR(request) == _IOC_WRITE) {
        std::memcpy(&setting, argument, sizeof(setting));
        Trace(state, 0, "ioctl /dev/spidev32765.1 0x%08lx=%u", request, static_cast<unsigned>(setting));
    } else {
        std::memcpy(argument, &setting, sizeof(setting));
        Trace(state, 0, "ioctl /dev/spidev32765.1 0x%08lx", request);
    }
    return 0;
}

void SetScript(SpiScript& script, const std::vector<SpiAnswer>& answers) {
    script.next = 0;
    script.count = static_cast<std::uint32_t>(std::min(answers.size(), SpiScriptLength));
    std::copy_n(answers.begin(), script.count, std::begin(script.answers));
}

}  // namespace

SpiAnswer SpiAnswer::Words(std::uint16_t first, std::uint16_t second) {
    return Raw(std::uint32_t{first} << 16U | second);
}

SpiAnswer SpiAnswer::Raw(std::uint32_t words) { return {.words = words}; }
SpiAnswer SpiAnswer::Count(std::int32_t count) { return Raw(WordsOf(count)); }
SpiAnswer SpiAnswer::Echo() { return {.kind = Kind::Echo}; }
SpiAnswer SpiAnswer::Short(std::size_t bytes) { return {.kind = Kind::Short, .bytes = bytes}; }
SpiAnswer SpiAnswer::Fail(int error) { return {.kind = Kind::Fail, .error = error}; }

void FinishConversion(BoardState& state) {
    SpiState& spi = state.spi;
    const int channel = ChannelOf(spi.lastCommand);
    spi.converting = false;
    spi.result = WordsOf(channel == 0 ? ReadDetector(state.instrument, EffectiveSettings(state), InputsOf(state))
                                      : spi.counts[channel]);
}

bool EndOfConversionLevel(const BoardState& state) {
    if (FaultActive(state, "eoc-stuck") || state.spi.endOfConversion == EndOfConversion::StuckHigh) {
        return true;
    }
    return state.spi.endOfConversion == EndOfConversion::Normal && state.spi.converting;
}

int SpiWrite(BoardState& state, const void* data, std::size_t size, std::size_t& moved) {
    const SpiAnswer* answer = NextAnswer(state.spi.writes);
    moved = size;
    int error = 0;
    if (WriteRefused(state, {Family::Spi})) {
        error = EIO;
    } else if (answer != nullptr && answer->kind == SpiAnswer::Kind::Fail) {
        error = answer->error;
    } else if (answer != nullptr && answer->kind == SpiAnswer::Kind::Short) {
        moved = std::min(size, answer->bytes);
    } else if (answer == nullptr && FaultActive(state, "spi-short")) {
        moved = size / 2;
    }
    if (error == 0) {
        TakeCommand(state, data, moved);
    }
    TraceWords(state, "write", data, error == 0 ? moved : size, error);
    return error;
}

int SpiRead(BoardState& state, void* data, std::size_t size, std::size_t& moved) {
    std::uint32_t words = 0;
    moved = size;
    const int error = AnswerWords(state, words, moved);
    if (error == 0) {
        StoreWords(words, data, moved);
    }
    TraceWords(state, "read", data, error == 0 ? moved : 0, error);
    return error;
}

int SpiIoctl(BoardState& state, unsigned long request, void* argument, int& result) {
    result = 0;
    if (argument == nullptr) {
        return EFAULT;
    }
    switch (request) {
        case SPI_IOC_WR_MODE:
        case SPI_IOC_RD_MODE:
            return Setting(state, request, argument, state.spi.mode);
        case SPI_IOC_WR_BITS_PER_WORD:
        case SPI_IOC_RD_BITS_PER_WORD:
            return Setting(state, request, argument, state.spi.bits);
        case SPI_IOC_WR_MAX_SPEED_HZ:
        case SPI_IOC_RD_MAX_SPEED_HZ:
            return Setting(state, request, argument, state.spi.speed);
        default:
            break;
    }
    const bool message =
        _IOC_TYPE(request) == SPI_IOC_MAGIC && _IOC_NR(request) == 0 && _IOC_DIR(request) == _IOC_WRITE;
    return message ? Message(state, request, argument, result) : ENOTTY;
}

std::uint16_t Board::LastCommand() const { return BoardLock(*m_state)->spi.lastCommand; }

std::size_t Board::CommandCount() const { return static_cast<std::size_t>(BoardLock(*m_state)->spi.commands); }

void Board::ScriptSpiRead(const std::vector<SpiAnswer>& answers) { SetScript(BoardLock(*m_state)->spi.reads, answers); }

void Board::ScriptSpiWrite(const std::vector<SpiAnswer>& answers) {
    SetScript(BoardLock(*m_state)->spi.writes, answers);
}

void Board::SetConverterChannel(int channel, std::int32_t count) {
    if (channel > 0 && channel < ConverterChannels) {
        BoardLock(*m_state)->spi.counts[channel] = count;
    }
}

void Board::SetEndOfConversion(EndOfConversion behavior) {
    const BoardLock state(*m_state);
    state->spi.endOfConversion = behavior;
    Changed(*state);
}

void Board::SetConversionTime(int milliseconds) {
    BoardLock(*m_state)->spi.conversionMilliseconds = std::max(milliseconds, 0);
}

}  // namespace Bench
