// Sixteen analog test points, switched by two eight-way multiplexers to one converter input. Make one on the stack for
// each test: the lines are claimed from Init to destruction. Failures are logged. One thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <list>
#include <memory>

#include "Drivers/GpioPin.h"
#include "Drivers/PinAddress.h"

// Line A, line B, line C, enable.
using DemultiplexerLines = std::array<PinAddress, 4>;

class Demultiplexer {
public:
    Demultiplexer();
    Demultiplexer(const Demultiplexer&) = delete;
    Demultiplexer& operator=(const Demultiplexer&) = delete;
    virtual ~Demultiplexer();

    // Claims the lines and drives them low. False if one of them fails.
    bool Init(const DemultiplexerLines& lines);

    // 0 to 15. A channel above is logged and selects the point of channel 8.
    bool SelectChannel(std::uint32_t channel);
    // Volts, read at once: the point needs no time to settle.
    bool ReadVoltage(std::uint32_t channel, float& voltage);
    // Channels 0 to 15 in this order; the first failure ends the reading and keeps the voltages read so far.
    bool ReadAllVoltages(std::list<float>& voltages);

private:
    bool m_initialized = false;
    std::list<std::uint32_t> m_channels;
    std::list<std::uint32_t>::const_iterator m_position;
    std::array<std::unique_ptr<GpioPin>, 4> m_lines;  // A, B, C, enable
};
