// Finds the device file of a path, and calls the file's family.
#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "Bench/Board/BoardState.h"

namespace Bench {

namespace {

constexpr std::string_view SpiPath = "/dev/spidev32765.1";
constexpr std::string_view MemoryPath = "/dev/mem";

constexpr struct {
    std::string_view folder;
    Node (*find)(const BoardState& state, std::string_view name);
} DeviceFolders[] = {
    {"/sys/class/gpio/", FindGpioNode},
    {"/sys/class/pwm/pwmchip0/", FindPwmNode},
    {"/sys/bus/iio/devices/iio:device0/", FindIioNode},
};

}  // namespace

void Put(Buffer& buffer, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int count = std::vsnprintf(buffer.data + buffer.used, buffer.size - buffer.used, format, arguments);
    va_end(arguments);
    if (count > 0) {
        buffer.used = std::min(buffer.used + static_cast<std::size_t>(count), buffer.size - 1);
    }
}

bool IsBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool IsDevice(Node node) { return node.family >= Family::Gpio && node.family <= Family::Memory; }

bool IsCharacterDevice(Node node) { return node.family == Family::Spi || node.family == Family::Memory; }

Node FindNode(const BoardState& state, std::string_view path) {
    for (const auto& row : DeviceFolders) {
        if (path.starts_with(row.folder)) {
            return row.find(state, path.substr(row.folder.size()));
        }
    }
    return {path == SpiPath ? Family::Spi : path == MemoryPath ? Family::Memory : Family::None};
}

bool NodeAlive(const BoardState& state, Node node) {
    char space[PathLength] = {};
    Buffer path{space, sizeof(space)};
    NodePath(node, path);
    return FindNode(state, path.Text()).family == node.family;
}

void NodePath(Node node, Buffer& path) {
    if (node.family == Family::Gpio) {
        GpioPath(node, path);
    } else if (node.family == Family::Pwm) {
        PwmPath(node, path);
    } else if (node.family == Family::Iio) {
        IioPath(node, path);
    } else if (IsCharacterDevice(node)) {
        Put(path, "%s", (node.family == Family::Spi ? SpiPath : MemoryPath).data());
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
    int error = EIO;  // the on-chip converter's files are read-only
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
    Trace(state, error, "%s=%.*s", space, length, text.data());
    return error;
}

}  // namespace Bench
