#include "Drivers/Demultiplexer.h"

#include "Drivers/ADC.h"
#include "Frameworks/Utilities/Report.h"

namespace {

constexpr std::uint32_t Channels = 16;
constexpr std::uint32_t ChannelsPerMultiplexer = 8;
constexpr std::uint32_t ConverterInput = 6;

// Whether the line could be claimed does not count: a line that another test holds at the moment is shared with it.
void MakeLine(std::unique_ptr<GpioPin>& line, PinAddress address) {
    line.reset();
    line = std::make_unique<GpioPin>(address.bank, address.pin);
}

bool ConfigureLine(GpioPin& line) {
    return line.SetModeAndEdge(OUTPUT_GPIO_MODE, NO_GPIO_EDGE) && line.Write(LOW_GPIO_LEVEL);
}

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
    MakeLine(m_lineA, lines[0]);
    MakeLine(m_lineB, lines[1]);
    MakeLine(m_lineC, lines[2]);
    MakeLine(m_lineEnable, lines[3]);
    m_initialized = ConfigureLines();
    return m_initialized ||
           ReportError("Demultiplexer::Init - Configuring demultiplexer driver GPIO failed!", REMOTE_INDICATOR_CONTROL);
}

bool Demultiplexer::ConfigureLines() {
    return ConfigureLine(*m_lineA) && ConfigureLine(*m_lineB) && ConfigureLine(*m_lineC) &&
           ConfigureLine(*m_lineEnable);
}

bool Demultiplexer::SelectChannel(std::uint32_t channel) {
    std::uint32_t address = channel;
    if (channel >= Channels) {
        ReportError("Demultiplexer::SelectChannel - Invalid channel!", REMOTE_INDICATOR_CONTROL);
        address = ChannelsPerMultiplexer;
    }
    const std::int32_t enable = address < ChannelsPerMultiplexer ? HIGH_GPIO_LEVEL : LOW_GPIO_LEVEL;
    const bool selected = m_initialized && m_lineA->Write(Bit(address, 0)) && m_lineB->Write(Bit(address, 1)) &&
                          m_lineC->Write(Bit(address, 2)) && m_lineEnable->Write(enable);
    return selected ||
           ReportError("Demultiplexer::SelectChannel - Setting mux channel failed!", REMOTE_INDICATOR_CONTROL);
}

bool Demultiplexer::ReadVoltage(std::uint32_t channel, float& voltage) {
    ADC converter;
    return (converter.Open(ConverterInput) && SelectChannel(channel) && converter.ReadVoltage(voltage)) ||
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
