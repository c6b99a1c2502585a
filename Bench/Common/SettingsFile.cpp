#include "Bench/Common/SettingsFile.h"

#include <algorithm>
#include <pugixml.hpp>

#include "Bench/Common/Text.h"

namespace Bench {

namespace {

std::string StepOf(const pugi::xml_node& item) {
    const pugi::xml_node parent = item.parent();
    return std::string(parent.name()) == "MEASUREMENT_STEP"
               ? parent.find_child_by_attribute("INFO_ITEM", "name", "Step").attribute("value").value()
               : "";
}

}  // namespace

bool SettingsFile::Read(const std::string& path, std::string& error) {
    const std::optional<std::string> text = ReadWholeFile(path);
    if (!text) {
        error = "can't read the configuration " + path;
        return false;
    }
    m_text = *text;
    return true;
}

// The library parses a copy in place and moves no value: each value starts at the same offset in the copy and in the
// text.
std::vector<SettingsFile::Place> SettingsFile::Places() const {
    std::string copy = m_text;
    pugi::xml_document document;
    document.load_buffer_inplace(copy.data(), copy.size(), pugi::parse_fragment | pugi::parse_escapes,
                                 pugi::encoding_utf8);
    pugi::xpath_node_set nodes = document.select_nodes("//INFO_ITEM[@name][@value]");
    nodes.sort();
    const auto startOf = [&copy](const pugi::xml_attribute& attribute) {
        return static_cast<std::size_t>(attribute.value() - copy.data());
    };
    const auto endOf = [this](std::size_t start) { return m_text.find(m_text[start - 1], start); };  // the same quote
    std::vector<Place> places;
    for (const pugi::xpath_node& found : nodes) {
        const pugi::xml_node node = found.node();
        const pugi::xml_attribute value = node.attribute("value");
        const std::size_t start = startOf(value);
        const std::size_t last = endOf(startOf(node.last_attribute()));
        if (last != std::string::npos) {  // else the text ends within this tag
            const SettingsItem item{StepOf(node), node.attribute("name").value(), value.value()};
            const auto element = static_cast<std::size_t>(node.offset_debug()) - 1;
            places.push_back({item, element, m_text.find('>', last) + 1 - element, start, endOf(start) - start});
        }
    }
    return places;
}

std::vector<SettingsItem> SettingsFile::Items() const {
    std::vector<SettingsItem> items;
    for (const Place& place : Places()) {
        items.push_back(place.item);
    }
    return items;
}

std::optional<std::string> SettingsFile::Find(const std::string& name) const {
    for (const Place& place : Places()) {
        if (place.item.name == name) {
            return place.item.value;
        }
    }
    return std::nullopt;
}

bool SettingsFile::Set(const std::string& name, const std::string& value) {
    bool isSet = false;
    return ChangeEach([&](const SettingsItem& item) {
        const bool isFirst = !isSet && item.name == name;
        isSet = isSet || isFirst;
        return isFirst ? std::optional(value) : std::nullopt;
    });
}

bool SettingsFile::SetAll(const std::string& name, const std::string& value) {
    return ChangeEach(
        [&](const SettingsItem& item) { return item.name == name ? std::optional(value) : std::nullopt; });
}

bool SettingsFile::ChangeEach(const Change& change) {
    std::string text;
    std::size_t copied = 0;
    bool isChanged = false;
    for (const Place& place : Places()) {
        if (const std::optional<std::string> value = change(place.item)) {
            text += m_text.substr(copied, place.value - copied) + *value;
            copied = place.value + place.valueLength;
            isChanged = true;
        }
    }
    m_text = text + m_text.substr(copied);
    return isChanged;
}

bool SettingsFile::Remove(const std::string& name) {
    for (const Place& place : Places()) {
        if (place.item.name == name) {
            m_text.erase(place.element, place.elementLength);
            return true;
        }
    }
    return false;
}

}  // namespace Bench
