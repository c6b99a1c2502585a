#include "Drivers/Demultiplexer.h"

#include "Drivers/ADC.h"
#include "Drivers/Board.h"
#include "Frameworks/Utilities/Report.h"

namespace {

constexpr std::uint32_t Channels = 16;
constexpr std::uint32_t ChannelsPerMultiplexer = 8;

std::int32_t Bit(std::uint32_t channel, std::uint32_t bit) { return static_cast<std::int32_t>(channel >> bit & 1U); }

}  // namespace

Demultiplexer::Demultiplexer() {
    for (std::uint32_t channel = 0; channel < Channels; ++channel) {
        m_channels.push_back(channel);
    }
    m_position = m_channels.cbegin();
}

Demultiplexer::~Demultiplexer() = default;

bool Demultiplexer::Init(const DemultiplexerLines& lines) {
    m_initialized = ClaimLowOutputs(lines, m_lines);
    return m_initialized ||
           ReportError("Demultiplexer::Init - Configuring demultiplexer driver GPIO failed!", REMOTE_INDICATOR_CONTROL);
}

bool Demultiplexer::SelectChannel(std::uint32_t channel) {
    std::uint32_t address = channel;
    if (channel >= Channels) {
        ReportError("Demultiplexer::SelectChannel - Invalid channel!", REMOTE_INDICATOR_CONTROL);
        address = ChannelsPerMultiplexer;
    }
    const std::int32_t enable = address < ChannelsPerMultiplexer ? HIGH_GPIO_LEVEL : LOW_GPIO_LEVEL;
    const std::array<std::int32_t, 4> levels{Bit(address, 0), Bit(address, 1), Bit(address, 2), enable};
    bool selected = m_initialized;
    for (std::size_t line = 0; line < levels.size(); ++line) {
        selected = selected && m_lines[line]->Write(levels[line]);
    }
    return selected ||
           ReportError("Demultiplexer::SelectChannel - Setting mux channel failed!", REMOTE_INDICATOR_CONTROL);
}

bool Demultiplexer::ReadVoltage(std::uint32_t channel, float& voltage) {
    ADC converter;
    return (converter.Open(OnBoard::MultiplexerInput) && SelectChannel(channel) && converter.ReadVoltage(voltage)) ||
           ReportError("Demultiplexer::ReadVoltage failed!", DEVICE_MONITOR);
}

bool Demultiplexer::ReadAllVoltages(std::list<float>& voltages) {
    voltages.clear();
    for (m_position = m_channels.cbegin(); m_position != m_channels.cend(); ++m_position) {
        float voltage = 0.0F;
        if (!ReadVoltage(*m_position, voltage)) {
            return false;
        }
        voltages.push_back(voltage);
    }
    return true;
}
