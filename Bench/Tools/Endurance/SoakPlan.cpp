#include "Bench/Tools/Endurance/SoakPlan.h"

#include <algorithm>
#include <iterator>

#include "Bench/Common/Text.h"

namespace Bench {

namespace {

constexpr int Buttons[] = {1, 2, 2, 2, 4, 8, 0, 99, -1};

// A command, and whether it takes a time after which the test state comes back.
struct StationCommand {
    std::uint16_t command;
    bool isTimed;
};
constexpr StationCommand StationCommands[] = {
    {800, false},   {810, false},   {820, true},    {830, true},    {840, false},   {840, false},   {850, false},
    {999, false},   {10090, false}, {12000, false}, {13001, false}, {13301, false}, {30100, false}, {30200, false},
    {30300, false}, {44100, false}, {62100, false}, {62101, false}, {40100, false},
};

constexpr std::size_t FaultsAtOnce = 2;

std::string DataOf(const TestRequest& request) {
    std::string text = request.data ? " data " : "";
    for (const char byte : request.data.value_or("")) {
        text += Format("%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    }
    return text;
}

std::string NameOf(const std::string& fault) { return fault.substr(0, fault.find('=')); }

}  // namespace

// All faults but a cut of the front end's link, which ends the process by a broken pipe as required, and card-in, which
// is the end of card-out.
const std::vector<std::string>& SoakPlan::Faults() {
    static const std::vector<std::string> faults = {
        "gpio-missing",
        "pwm-missing",
        "spi-missing",
        "iio-missing",
        "mem-missing",
        "write-refused=pwm",
        "write-refused=gpio",
        "spi-short",
        "spi-echo",
        "eoc-stuck",
        "flag-stuck-high",
        "flag-stuck-low",
        "motor-stalled",
        "stir-stalled",
        "valve-stuck",
        "led-dead",
        "detector-saturated",
        "rail-out=9",
        "card-out",
        "card-full",
        "card-slow=20",
        "card-protected",
        "clock-back=30",
        "reagent-empty",
        "bubbles",
        "flow-stopped",
        "sound-tools-missing",
        "amixer-fails",
        "amplifier-dead",
        "pump-stage-dead",
        "stir-stage-dead",
        "indicator-led-open=blue-water",
        "cable=250",
        "gpio-taken=indicator",
        "link-cut=100,1200",
    };
    return faults;
}

SoakEvent SoakPlan::Next() {
    const double end = m_ends.empty() ? 1e300 : m_ends.top().second;
    if (end <= m_nextEvent && end <= m_nextReset) {
        SoakEvent event = m_ends.top();
        m_ends.pop();
        std::erase(m_active, event.fault);
        return event;
    }
    if (m_nextReset <= m_nextEvent) {
        SoakEvent event;
        event.second = m_nextReset;
        event.action = SoakAction::Reset;
        event.byStation = m_random.OneIn(2);
        m_nextReset += Distance(m_pace.resets);
        return event;
    }
    SoakEvent event = Draw();
    event.second = m_nextEvent;
    m_nextEvent += Distance(m_pace.events);
    if (event.action == SoakAction::FaultOn) {
        SoakEvent last;
        last.action = SoakAction::FaultOff;
        last.fault = NameOf(event.fault);
        last.second = event.second + 5.0 + m_random.Share() * m_pace.maxFault;
        m_active.push_back(last.fault);
        m_ends.push(last);
    }
    return event;
}

SoakEvent SoakPlan::Draw() {
    SoakEvent event;
    const std::uint32_t kind = m_random.Below(10);
    if (kind < 3 && m_active.size() < FaultsAtOnce) {
        const std::string& fault = Faults()[m_random.Below(static_cast<std::uint32_t>(Faults().size()))];
        if (std::find(m_active.begin(), m_active.end(), NameOf(fault)) == m_active.end()) {
            event.action = SoakAction::FaultOn;
            event.fault = fault;
            return event;
        }
    }
    if (kind < 6) {
        event.code = Buttons[m_random.Below(std::size(Buttons))];
        return event;
    }
    event.action = SoakAction::Station;
    event.request = DrawRequest();
    return event;
}

TestRequest SoakPlan::DrawRequest() {
    const StationCommand& row = StationCommands[m_random.Below(std::size(StationCommands))];
    TestRequest request;
    request.command = row.command;
    request.count = m_random.Below(3);
    // Long enough for a pause between two commands.
    request.value = row.isTimed || request.count > 1 ? static_cast<double>(m_random.Between(20, 200)) : 0.0;
    if (request.command == 30200 && m_random.OneIn(2)) {
        request.data = m_random.Bytes(m_random.Between(1, 20));
    }
    return request;
}

std::string SoakEvent::Describe() const {
    switch (action) {
        case SoakAction::Button:
            return Format("%.3f button %d", second, code);
        case SoakAction::Station:
            return Format("%.3f station %u count %u value %.0f", second, static_cast<unsigned>(request.command),
                          static_cast<unsigned>(request.count), request.value) +
                   DataOf(request);
        case SoakAction::FaultOn:
            return Format("%.3f fault %s", second, fault.c_str());
        case SoakAction::FaultOff:
            return Format("%.3f end of %s", second, fault.c_str());
        case SoakAction::Reset:
            return Format("%.3f reset by the %s", second, byStation ? "station" : "front end");
    }
    return "";
}

}  // namespace Bench
