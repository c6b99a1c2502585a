// The board's devices and their files: pins, PWM, the SPI bus with its converter, the on-chip converter, and the
// processor's registers. One source for each family. Call under BoardLock. Functions that can fail return an error
// number, 0 for success.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "Bench/Board/Board.h"

namespace Bench {

struct BoardState;

constexpr std::size_t PathLength = 512;

// ---- Lines.
struct Line {
    int bank;
    int pin;
    friend bool operator==(Line, Line) = default;
};

constexpr Line ConversionLine{0, 21};  // low at the end of a conversion
constexpr Line HomeFlag{1, 18};        // of the pump
constexpr Line CardSwitch{3, 9};       // high with a card in its slot

struct PinState {
    bool claimed = false;
    bool output = false;
    bool latch = false;
    std::int8_t driven = -1;  // level from outside; -1: none
    Edge edge = Edge::None;
    std::uint32_t rising = 0;  // edges so far
    std::uint32_t falling = 0;
};

bool PinLevel(const BoardState& state, Line line);
void SetPinLatch(BoardState& state, Line line, bool level);
void CountEdge(PinState& pin, bool level);

// Counts an edge of the line if its level differs between construction and destruction.
class EdgeWatch {
public:
    EdgeWatch(BoardState& state, Line line) : m_state(state), m_line(line), m_before(PinLevel(state, line)) {}
    ~EdgeWatch();
    EdgeWatch(const EdgeWatch&) = delete;
    EdgeWatch& operator=(const EdgeWatch&) = delete;

private:
    BoardState& m_state;
    const Line m_line;
    const bool m_before;
};

// ---- PWM.
struct PwmState {
    bool exported = false;
    bool enabled = false;
    std::uint64_t period = 0;
    std::uint64_t duty = 0;
};

// ---- SPI.
constexpr std::size_t SpiScriptLength = 512;
constexpr int ConverterChannels = 201;

struct SpiScript {
    std::uint32_t next = 0;
    std::uint32_t count = 0;
    SpiAnswer answers[SpiScriptLength];
};

struct SpiState {
    std::uint8_t mode = 0;
    std::uint8_t bits = 8;
    std::uint32_t speed = 500000;
    std::uint16_t lastCommand = 0;
    std::uint64_t commands = 0;
    bool converting = false;
    std::int64_t conversionEnds = 0;
    std::int32_t conversionMilliseconds = 160;
    std::uint32_t result = 0;
    EndOfConversion endOfConversion = EndOfConversion::Normal;
    std::int32_t counts[ConverterChannels] = {};
    SpiScript reads;
    SpiScript writes;
};

// `moved`: bytes transferred.
int SpiWrite(BoardState& state, const void* data, std::size_t size, std::size_t& moved);
int SpiRead(BoardState& state, void* data, std::size_t size, std::size_t& moved);
int SpiIoctl(BoardState& state, unsigned long request, void* argument, int& result);
void FinishConversion(BoardState& state);  // takes the reading
bool EndOfConversionLevel(const BoardState& state);

// ---- On-chip converter.
enum class Source : std::uint8_t { Model, Raw, Volts };

struct IioState {
    Source source[MultiplexerChannels] = {};
    int raw[MultiplexerChannels] = {};
    double volts[MultiplexerChannels] = {};
    int inputRaw[IioInputs] = {};
    char scale[32] = {};
};

// ---- Registers.
constexpr std::size_t RegisterPageSize = 4096;
void FillRegisterPage(BoardState& state, std::uint32_t page, std::uint32_t* words);
void ApplyRegisterPage(BoardState& state, std::uint32_t page, const std::uint32_t* words);

// ---- Remote indicator.
std::uint8_t IndicatorLinesHigh(const BoardState& state);                    // bit by IndicatorLed
void BreakIndicator(const BoardState& state, InstrumentSettings& settings);  // as its faults say
bool IsIndicatorLed(std::string_view name);
bool IsIndicatorLine(Line line);

// ---- Nodes: the files of devices.
enum class Family : std::uint8_t { None, Gpio, Pwm, Spi, Iio, Memory, Regular, Card, Socket };

struct Node {
    Family family = Family::None;
    std::uint8_t file = 0;    // of the family
    std::uint8_t first = 0;   // bank, channel, input or upper half of a port
    std::uint8_t second = 0;  // pin or lower half of a port
};

inline Line LineOf(Node node) { return {node.first, node.second}; }
bool IsDevice(Node node);
bool IsCharacterDevice(Node node);
bool IsGpioValue(Node node);
std::uint32_t EdgeCount(const BoardState& state, Line line);  // by the pin's edge setting

struct Buffer {
    char* data;
    std::size_t size;
    std::size_t used = 0;

    std::string_view Text() const { return {data, used}; }
};
[[gnu::format(printf, 2, 3)]] void Put(Buffer& buffer, const char* format, ...);

bool IsBelow(std::string_view path, std::string_view folder);   // or the folder itself
Node FindNode(const BoardState& state, std::string_view path);  // by absolute path; family None if there is none
bool NodeAlive(const BoardState& state, Node node);             // false after its pin or channel was released
void NodePath(Node node, Buffer& path);
void NodeContent(BoardState& state, Node node, Buffer& content);
int NodeWrite(BoardState& state, Node node, std::string_view data);  // what the program wrote in one call; traced

// The same by family. `name` is relative to the family's folder.
Node FindGpioNode(const BoardState& state, std::string_view name);
Node FindPwmNode(const BoardState& state, std::string_view name);
Node FindIioNode(const BoardState& state, std::string_view name);
void GpioPath(Node node, Buffer& path);
void PwmPath(Node node, Buffer& path);
void IioPath(Node node, Buffer& path);
void GpioContent(BoardState& state, Node node, Buffer& content);
void PwmContent(BoardState& state, Node node, Buffer& content);
void IioContent(BoardState& state, Node node, Buffer& content);
int GpioWrite(BoardState& state, Node node, std::string_view text);
int PwmWrite(BoardState& state, Node node, std::string_view text);

// The whole text as a decimal number.
template <typename Number>
bool ParseNumber(std::string_view text, Number& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size();
}

}  // namespace Bench
