#include "Tests/Frameworks/Xml/XmlModel.h"

#include <algorithm>

namespace {

constexpr const char* WhiteSpace = " \t\r\n";

std::string Escaped(const std::string& text, bool withQuotes) {
    std::string escaped;
    for (const char byte : text) {
        switch (byte) {
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '&':
                escaped += "&amp;";
                break;
            case '"':
                escaped += withQuotes ? "&quot;" : "\"";
                break;
            case '\'':
                escaped += withQuotes ? "&apos;" : "'";
                break;
            default:
                escaped += byte;
        }
    }
    return escaped;
}

void Write(const ModelElement& element, std::string& text);

void WriteContent(const ModelElement& element, std::string& text) {
    for (const ModelPiece& piece : element.content) {
        text += piece.text;
        if (piece.element) {
            Write(*piece.element, text);
        }
    }
}

void Write(const ModelElement& element, std::string& text) {
    text += "<" + element.name;
    for (const ModelAttribute& attribute : element.attributes) {
        text += attribute.before + attribute.rawValue;
    }
    text += element.tail + (element.isEmpty ? "/>" : ">");
    if (!element.isEmpty) {
        WriteContent(element, text);
        text += "</" + element.name + element.endTagTail + ">";
    }
}

bool HasNoBytes(const ModelElement& element) {
    return std::all_of(element.content.begin(), element.content.end(),
                       [](const ModelPiece& piece) { return !piece.element && piece.text.empty(); });
}

std::string Section(std::string data) {
    for (std::size_t at = data.find("]]>"); at != std::string::npos; at = data.find("]]>", at + 15)) {
        data.replace(at, 3, "]]]]><![CDATA[>");
    }
    return "<![CDATA[" + data + "]]>";
}

}  // namespace

std::string XmlModel::Text() const {
    std::string text;
    WriteContent(m_top, text);
    return text;
}

XmlModel::Place XmlModel::PlaceOf(ModelElement& element) {
    auto& content = element.parent->content;
    return std::find_if(content.begin(), content.end(),
                        [&](const ModelPiece& piece) { return piece.element.get() == &element; });
}

// Splits the text pieces; the result is the place after the white space at `place`, if a "<" follows it.
XmlModel::Place XmlModel::SkipWhiteSpace(ModelElement& parent, Place place) {
    auto& content = parent.content;
    for (auto at = place; at != content.end(); ++at) {
        if (at->element) {
            return at;
        }
        const std::size_t end = at->text.find_first_not_of(WhiteSpace);
        if (end == std::string::npos) {
            continue;
        }
        if (at->text[end] != '<') {
            return place;
        }
        content.insert(at, ModelPiece{at->text.substr(0, end), nullptr});
        at->text.erase(0, end);
        return at;
    }
    // The parent's end tag follows, but nothing follows at the end of the document.
    return parent.parent == nullptr ? place : content.end();
}

bool XmlModel::Find(const std::string& name) {
    auto at = m_parent->content.begin();
    if (m_main != nullptr) {
        at = std::next(PlaceOf(*m_main));
    }
    for (; at != m_parent->content.end(); ++at) {
        if (at->element && (name.empty() || at->element->name == name)) {
            m_main = at->element.get();
            m_child = nullptr;
            return true;
        }
    }
    return false;
}

bool XmlModel::Into() {
    if (m_main == nullptr) {
        return false;
    }
    m_parent = m_main;
    m_main = m_child;
    m_child = nullptr;
    return true;
}

bool XmlModel::OutOf() {
    if (m_parent == &m_top) {
        return false;
    }
    m_child = m_main;
    m_main = m_parent;
    m_parent = m_parent->parent;
    return true;
}

void XmlModel::ResetPosition() {
    m_parent = &m_top;
    ResetMainPosition();
}

void XmlModel::ResetMainPosition() {
    m_main = nullptr;
    m_child = nullptr;
}

std::string XmlModel::Attribute(const std::string& name) const {
    if (m_main != nullptr) {
        for (const ModelAttribute& attribute : m_main->attributes) {
            if (attribute.name == name) {
                return attribute.value;
            }
        }
    }
    return {};
}

bool XmlModel::SetAttribute(const std::string& name, const std::string& value) {
    if (m_main == nullptr) {
        return false;
    }
    const std::string raw = "\"" + Escaped(value, true) + "\"";
    for (ModelAttribute& attribute : m_main->attributes) {
        if (attribute.name == name) {
            attribute.value = value;
            attribute.rawValue = raw;
            return true;
        }
    }
    m_main->attributes.push_back({name, value, " " + name + "=", raw});
    return true;
}

bool XmlModel::Add(const std::string& name, const std::string& data, unsigned flags) {
    ModelElement* parent = m_parent;
    ModelElement* reference = m_main;
    if ((flags & 0x4000) != 0) {
        if (m_main == nullptr) {
            return false;
        }
        parent = m_main;
        reference = m_child;
    }
    const std::string lineFeed = (flags & 2) != 0 ? "" : "\n";
    auto& content = parent->content;
    Place place = content.end();
    const auto first =
        std::find_if(content.begin(), content.end(), [](const ModelPiece& piece) { return piece.element != nullptr; });
    if ((flags & 0x1000) != 0 && first != content.end()) {
        place = first;
    } else if (reference != nullptr) {
        const bool isBefore = (flags & 0x2000) != 0;
        place = isBefore ? PlaceOf(*reference) : SkipWhiteSpace(*parent, std::next(PlaceOf(*reference)));
    } else if (parent->parent != nullptr && HasNoBytes(*parent)) {
        parent->isEmpty = false;
        content.insert(place, ModelPiece{lineFeed, nullptr});
    }
    auto added = std::make_unique<ModelElement>();
    added->name = name;
    added->parent = parent;
    added->isEmpty = data.empty();
    if (data.empty()) {
        added->tail = (flags & 4) != 0 ? " " : "";
    } else {
        added->content.push_back({(flags & 1) != 0 ? Section(data) : Escaped(data, false), nullptr});
    }
    m_parent = parent;
    m_main = added.get();
    m_child = nullptr;
    content.insert(place, ModelPiece{"", std::move(added)});
    content.insert(place, ModelPiece{lineFeed, nullptr});
    return true;
}

bool XmlModel::Remove() {
    if (m_main == nullptr) {
        return false;
    }
    const Place place = PlaceOf(*m_main);
    const Place end = SkipWhiteSpace(*m_parent, std::next(place));
    ModelElement* previous = nullptr;
    for (auto at = m_parent->content.begin(); at != place; ++at) {
        previous = at->element ? at->element.get() : previous;
    }
    m_parent->content.erase(place, end);
    m_main = previous;
    m_child = nullptr;
    return true;
}
