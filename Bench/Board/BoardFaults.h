// Faults by name. Each is a row of one table; a device asks FaultActive or NextFaultValue for what the row's
// traits do not express. Call under BoardLock.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Bench/Board/BoardCard.h"
#include "Bench/Instrument/Instrument.h"

namespace Bench {

enum class ValueKind : std::uint8_t { None, Text, Number, Channel, Led, Pin, Link };

// The value that a fault takes, and what it does without further code.
struct FaultTraits {
    ValueKind value = ValueKind::None;
    const char* valueName = "";                      // as the help shows it
    bool InstrumentSettings::*instrument = nullptr;  // set while the fault is active
    bool CardState::*card = nullptr;                 // set when the fault begins, reset when it is cleared
    std::string_view missingPath = {};               // absent, with all files below it
};

struct FaultRow {
    std::string_view name;
    const char* description;
    FaultTraits traits = {};
};

inline constexpr FaultRow FaultRows[] = {
    {"gpio-missing", "the pin files under /sys/class/gpio are absent", {.missingPath = "/sys/class/gpio"}},
    {"pwm-missing", "the files of PWM chip 0 are absent", {.missingPath = "/sys/class/pwm"}},
    {"spi-missing", "/dev/spidev32765.1 is absent", {.missingPath = "/dev/spidev32765.1"}},
    {"iio-missing", "the files of the on-chip converter are absent", {.missingPath = "/sys/bus/iio"}},
    {"mem-missing", "/dev/mem is absent", {.missingPath = "/dev/mem"}},
    {"write-refused",
     "a write to a device file with that text in its path fails with EIO",
     {ValueKind::Text, "PATHPART"}},
    {"spi-short", "each SPI transfer moves half of its bytes"},
    {"spi-echo", "each SPI read returns the command"},
    {"eoc-stuck", "the converter's end of conversion never goes low"},
    {"flag-stuck-high", "the pump's home flag always reads high", {.instrument = &InstrumentSettings::flagStuckHigh}},
    {"flag-stuck-low", "the pump's home flag always reads low", {.instrument = &InstrumentSettings::flagStuckLow}},
    {"motor-stalled", "the pump gets its steps and does not turn", {.instrument = &InstrumentSettings::motorStalled}},
    {"stir-stalled", "the stir bar gets its steps and does not turn", {.instrument = &InstrumentSettings::stirStalled}},
    {"valve-stuck", "the sample valve stays closed"},
    {"led-dead", "the emitter gives no light", {.instrument = &InstrumentSettings::ledDead}},
    {"detector-saturated", "the detector reads full scale", {.instrument = &InstrumentSettings::detectorSaturated}},
    {"rail-out", "the rail at that multiplexer channel has half its voltage", {ValueKind::Channel, "CHANNEL"}},
    {"card-out", "the card is pulled, mounted or not"},
    {"card-in", "the card is put into its slot"},
    {"card-full", "the card has no space left", {.card = &CardState::full}},
    {"card-slow", "each write and sync on the card takes that much longer", {ValueKind::Number, "MS"}},
    {"card-protected", "the card is write-protected", {.card = &CardState::writeProtected}},
    {"clock-back", "the wall clock is set back", {ValueKind::Number, "SECONDS"}},
    {"reagent-empty", "the reagent bottle is empty", {.instrument = &InstrumentSettings::reagentEmpty}},
    {"bubbles", "bubbles stick in the light path"},
    {"flow-stopped", "no sample flows through the open valve"},
    {"sound-tools-missing", "the shell finds neither aplay nor amixer"},
    {"amixer-fails", "amixer ends with status 1"},
    {"amplifier-dead",
     "the audio amplifier draws no current while a clip plays",
     {.instrument = &InstrumentSettings::amplifierDead}},
    {"pump-stage-dead",
     "the pump's stage draws no current and does not turn the pump",
     {.instrument = &InstrumentSettings::pumpStageDead}},
    {"stir-stage-dead",
     "the stir motor's stage draws no current and does not turn it",
     {.instrument = &InstrumentSettings::stirStageDead}},
    {"indicator-led-open",
     "an LED of the remote indicator is broken: blue-, amber- or red-, then analyzer or water",
     {ValueKind::Led, "NAME"}},
    {"cable", "length of the remote indicator's cable; default 100", {ValueKind::Number, "FEET"}},
    {"gpio-taken",
     "another kernel driver holds that line, or all six of the remote indicator: gpio-taken=indicator",
     {ValueKind::Pin, "BANK,PIN"}},
    {"link-cut",
     "each connection, or each to that port, is cut after that many received bytes",
     {ValueKind::Link, "BYTES[,PORT]"}},
};

// A fault by its name. A name that is not in the table does not compile.
struct Fault {
    consteval Fault(const char* name) {
        while (FaultRows[row].name != name) {
            ++row;
        }
    }
    std::size_t row = 0;
};

constexpr std::size_t MaxFaults = 64;

struct FaultEntry {
    bool used = false;
    bool active = false;
    std::uint32_t row = 0;  // of FaultRows
    std::int64_t at = 0;
    char value[64] = {};
    char text[128] = {};
};

bool FaultActive(const BoardState& state, Fault fault);
// The values of an active fault, one after the other; `next` begins at 0. Null after the last.
const char* NextFaultValue(const BoardState& state, Fault fault, std::size_t& next);

void BreakInstrument(const BoardState& state, InstrumentSettings& settings);  // as the active faults say
bool PathMissing(const BoardState& state, std::string_view path);
bool WriteRefused(const BoardState& state, Node node);
bool RailOut(const BoardState& state, int channel);
bool GpioTaken(const BoardState& state, Line line);
// Bytes after which a connection to that port is cut; the largest number if it is not.
std::uint64_t LinkLength(const BoardState& state, int port);

void ActivateDueFaults(BoardState& state, std::int64_t now);
std::int64_t NextFaultAt(const BoardState& state);  // the largest number if none is pending

}  // namespace Bench
