#include "Bench/Console/Settings.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <utility>

namespace Bench {

namespace {

constexpr std::size_t MaximalSize = 4U << 20U;

struct Span {
    std::size_t start = 0;
    std::size_t length = 0;
};

// Where the value of an attribute stands in the text of one tag.
std::optional<Span> FindAttribute(const std::string& tag, const std::string& name) {
    const std::string start = " " + name + "=\"";
    const std::size_t at = tag.find(start);
    if (at == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t from = at + start.size();
    const std::size_t end = tag.find('"', from);
    return end == std::string::npos ? std::nullopt : std::optional<Span>(Span{from, end - from});
}

struct Item {
    std::string name;
    std::string value;
    Span place;  // of the value in the whole text
};

// The next INFO_ITEM with a name and a value from `position` on, which moves behind it.
std::optional<Item> NextItem(const std::string& text, std::size_t& position) {
    while ((position = text.find("<INFO_ITEM", position)) != std::string::npos) {
        const std::size_t end = text.find('>', position);
        if (end == std::string::npos) {
            break;
        }
        std::string tag = text.substr(position, end - position);
        for (char& character : tag) {
            character = character == '\n' || character == '\t' || character == '\r' ? ' ' : character;
        }
        const std::size_t start = std::exchange(position, end);
        const std::optional<Span> name = FindAttribute(tag, "name");
        const std::optional<Span> value = FindAttribute(tag, "value");
        if (name && value) {
            return Item{tag.substr(name->start, name->length),
                        tag.substr(value->start, value->length),
                        {start + value->start, value->length}};
        }
    }
    position = text.size();
    return std::nullopt;
}

bool ReadText(const std::string& path, std::string& text, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    if (!file || !(content << file.rdbuf())) {
        error = "can't read the configuration " + path;
        return false;
    }
    text = content.str();
    if (text.size() > MaximalSize) {
        error = "the configuration " + path + " is larger than 4 MiB";
        return false;
    }
    return true;
}

}  // namespace

bool SetSetting(std::string& text, const std::string& name, const std::string& value) {
    std::size_t position = 0;
    for (std::optional<Item> item = NextItem(text, position); item; item = NextItem(text, position)) {
        if (item->name == name) {
            text.replace(item->place.start, item->place.length, value);
            return true;
        }
    }
    return false;
}

bool ReadAnalyzerSettings(const std::string& path, AnalyzerSettings& settings, std::string& error) {
    std::string text;
    if (!ReadText(path, text, error)) {
        return false;
    }
    settings = {};
    settings.text = text;
    bool haveConstant = false;
    std::string step;
    std::size_t position = 0;
    for (std::optional<Item> item = NextItem(text, position); item; item = NextItem(text, position)) {
        if (item->name == "ColorimeterCellConstant") {
            settings.cellConstant = std::strtod(item->value.c_str(), nullptr);
            haveConstant = true;
        } else if (item->name == "LogMeasurementDataFileName") {
            settings.measurementFileName = item->value;
        } else if (item->name == "TestServerPortNumber") {
            const unsigned long port = std::strtoul(item->value.c_str(), nullptr, 10);
            settings.testServerPort =
                port > 0 && port <= 0xFFFF ? static_cast<std::uint16_t>(port) : UsualTestServerPort;
        } else if (item->name == "Step") {
            step = item->value;
        } else if (item->name == "Duration") {
            const double seconds = std::fmax(0.0, std::strtod(item->value.c_str(), nullptr) / 1000.0);
            settings.durations[step] = seconds;
            settings.cycleSeconds += seconds;
        }
    }
    if (!haveConstant || !(settings.cellConstant > 0.0) || !std::isfinite(settings.cellConstant)) {
        error = "the configuration " + path + " gives no ColorimeterCellConstant above 0";
        return false;
    }
    if (settings.measurementFileName.empty()) {
        error = "the configuration " + path + " gives no LogMeasurementDataFileName";
        return false;
    }
    return true;
}

}  // namespace Bench
