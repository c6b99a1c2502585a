// Which path is which device file, and the way from a file to its family.
#include <algorithm>
#include <cerrno>
#include <string_view>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr std::string_view GpioFolder = "/sys/class/gpio/";
constexpr std::string_view PwmFolder = "/sys/class/pwm/pwmchip0/";
constexpr std::string_view IioFolder = "/sys/bus/iio/devices/iio:device0/";

}  // namespace

bool IsDevice(Node node) {
    return node.family != Family::None && node.family != Family::Regular && node.family != Family::Card &&
           node.family != Family::Socket;
}

bool IsCharacterDevice(Node node) { return node.family == Family::Spi || node.family == Family::Memory; }

Node FindNode(const BoardState& state, std::string_view path) {
    if (path.starts_with(GpioFolder)) {
        return FindGpioNode(state, path.substr(GpioFolder.size()));
    }
    if (path.starts_with(PwmFolder)) {
        return FindPwmNode(state, path.substr(PwmFolder.size()));
    }
    if (path.starts_with(IioFolder)) {
        return FindIioNode(state, path.substr(IioFolder.size()));
    }
    if (path == "/dev/spidev32765.1") {
        return {Family::Spi};
    }
    if (path == "/dev/mem") {
        return {Family::Memory};
    }
    return {};
}

bool NodeAlive(const BoardState& state, Node node) {
    char space[PathLength] = {};
    Buffer path{space, sizeof(space)};
    NodePath(node, path);
    return FindNode(state, {space, path.used}).family == node.family;
}

void NodePath(Node node, Buffer& path) {
    switch (node.family) {
        case Family::Gpio:
            GpioPath(node, path);
            break;
        case Family::Pwm:
            PwmPath(node, path);
            break;
        case Family::Iio:
            IioPath(node, path);
            break;
        case Family::Spi:
            Put(path, "/dev/spidev32765.1");
            break;
        case Family::Memory:
            Put(path, "/dev/mem");
            break;
        case Family::None:
        case Family::Regular:
        case Family::Card:
        case Family::Socket:
            break;
    }
}

void NodeContent(BoardState& state, Node node, Buffer& content) {
    if (node.family == Family::Gpio) {
        GpioContent(state, node, content);
    } else if (node.family == Family::Pwm) {
        PwmContent(state, node, content);
    } else if (node.family == Family::Iio) {
        IioContent(state, node, content);
    }
}

int NodeWrite(BoardState& state, Node node, std::string_view data) {
    const std::string_view text = data.ends_with('\n') ? data.substr(0, data.size() - 1) : data;
    int error = EIO;  // the on-chip converter's files take nothing
    const bool refused = WriteRefused(state, node);
    if (!refused && node.family == Family::Gpio) {
        error = GpioWrite(state, node, text);
    } else if (!refused && node.family == Family::Pwm) {
        error = PwmWrite(state, node, text);
    }
    char space[PathLength] = {};
    Buffer path{space, sizeof(space)};
    NodePath(node, path);
    const int length = static_cast<int>(std::min<std::size_t>(text.size(), TraceTextLength));
    TraceAct(state, "%s=%.*s%s%s", space, length, text.data(), error == 0 ? "" : " !",
             error == 0 ? "" : ErrorName(error));
    return error;
}

}  // namespace Bench
