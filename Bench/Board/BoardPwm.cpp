// The kernel's files of PWM chip 0.
#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

enum PwmFile : std::uint8_t { PwmCount, PwmExport, PwmUnexport, PwmEnable, PwmPeriod, PwmDuty };

constexpr std::string_view PwmFileNames[] = {"npwm", "export", "unexport", "enable", "period", "duty_cycle"};

int Claim(BoardState& state, std::uint32_t channel, bool claim) {
    if (channel >= PwmChannels) {
        return ENODEV;
    }
    PwmState& pwm = state.pwm[channel];
    if (pwm.exported == claim) {
        return claim ? EBUSY : ENODEV;
    }
    pwm = PwmState{};
    pwm.exported = claim;
    char folder[64];
    std::snprintf(folder, sizeof(folder), "/sys/class/pwm/pwmchip0/pwm%u", channel);
    SetShadowFolder(state, folder, {"enable", "period", "duty_cycle"}, claim);
    return 0;
}

// Sets the field if the value is valid.
template <typename Field>
int Set(Field& field, std::uint32_t value, bool isValid) {
    field = isValid ? static_cast<Field>(value) : field;
    return isValid ? 0 : EINVAL;
}

}  // namespace

Node FindPwmNode(const BoardState& state, std::string_view name) {
    const std::size_t slash = name.find('/');
    const auto* file = std::find(std::begin(PwmFileNames), std::end(PwmFileNames), name.substr(slash + 1));
    const auto index = static_cast<std::uint8_t>(file - std::begin(PwmFileNames));
    if (file == std::end(PwmFileNames) || (slash != std::string_view::npos) != (index >= PwmEnable)) {
        return {};
    }
    if (index < PwmEnable) {
        return {Family::Pwm, index};
    }
    if (slash != 4 || !name.starts_with("pwm") || name[3] < '0' || name[3] >= '0' + PwmChannels) {
        return {};
    }
    const auto channel = static_cast<std::uint8_t>(name[3] - '0');
    return state.pwm[channel].exported ? Node{Family::Pwm, index, channel} : Node{};
}

void PwmPath(Node node, Buffer& path) {
    Put(path, "/sys/class/pwm/pwmchip0/");
    if (node.file >= PwmEnable) {
        Put(path, "pwm%u/", static_cast<unsigned>(node.first));
    }
    Put(path, "%s", PwmFileNames[node.file].data());
}

void PwmContent(BoardState& state, Node node, Buffer& content) {
    const PwmState& pwm = state.pwm[node.first];
    const std::uint64_t numbers[] = {PwmChannels, 0, 0, pwm.enabled ? 1U : 0U, pwm.period, pwm.duty};
    if (node.file != PwmExport && node.file != PwmUnexport) {
        Put(content, "%llu\n", static_cast<unsigned long long>(numbers[node.file]));
    }
}

int PwmWrite(BoardState& state, Node node, std::string_view text) {
    std::uint32_t value = 0;
    if (node.file == PwmCount) {
        return EIO;
    }
    if (!ParseNumber(text, value)) {
        return EINVAL;
    }
    PwmState& pwm = state.pwm[node.first];
    switch (node.file) {
        case PwmExport:
            return Claim(state, value, true);
        case PwmUnexport:
            return Claim(state, value, false);
        case PwmEnable:
            return Set(pwm.enabled, value, value == 0 || (value == 1 && pwm.period != 0));
        case PwmPeriod:
            return Set(pwm.period, value, value != 0 && value >= pwm.duty);
        default:
            return Set(pwm.duty, value, value <= pwm.period);
    }
}

PwmView Board::Pwm(int channel) const {
    if (channel < 0 || channel >= PwmChannels) {
        return {};
    }
    const PwmState pwm = BoardLock(*m_state)->pwm[channel];
    return {pwm.exported, pwm.enabled, pwm.period, pwm.duty};
}

}  // namespace Bench
