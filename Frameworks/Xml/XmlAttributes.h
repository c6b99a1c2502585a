// Walks the attributes of one tag. Like the scanner it takes a quoted run as a unit wherever it stands, so that a cut
// at any of its offsets leaves the rest of the tag to be read as before.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "Frameworks/Xml/XmlBytes.h"

// Views into the tag.
struct XmlAttribute {
    std::string_view name;
    std::string_view value;      // without its quotes
    std::size_t valueStart = 0;  // offset in the tag, quotes included; the end of the name if there is no "="
    std::size_t valueEnd = 0;
    bool hasEqualSign = false;
};

class XmlAttributes {
public:
    XmlAttributes() = default;
    // `tag` from the "<" to the ">"; the walk starts at `offset`, behind the name.
    XmlAttributes(std::string_view tag, std::size_t offset);

    // False behind the last, which leaves the attribute alone.
    bool Next(XmlAttribute& attribute);
    // For a reader that knows how they mostly stand: the value of the next one, taken if it is written as a blank, the
    // name, "=" and the value in double quotes. False otherwise, and nothing is taken.
    bool NextIs(std::string_view name, std::string_view& value);

private:
    const char* m_tag = nullptr;
    const char* m_at = nullptr;
    const char* m_end = nullptr;  // of the attributes: at the ">" or "/>" or "?>"
};

// True and the attribute, if the tag has one of that name. `nameEnd` is the offset behind the tag's own name.
bool FindXmlAttribute(std::string_view tag, std::size_t nameEnd, std::string_view name, XmlAttribute& attribute);

// The same for a reader that asks for one attribute of a tag after the other: the tag is walked once for all of them.
class XmlAttributeFinder {
public:
    // What it keeps points into `tag`.
    void Start(std::string_view tag, std::size_t nameEnd);

    // Of the first attribute of that name, with its entities decoded; empty if there is none.
    std::string ValueOf(std::string_view name) const;

private:
    static constexpr std::size_t Most = 8;  // what a tag has beyond these is walked each time

    struct Known {
        std::string_view name;
        std::string_view value;
    };

    std::string_view TextOf(std::string_view name) const;

    std::array<Known, Most> m_known{};
    std::size_t m_count = 0;
    XmlAttributes m_rest;  // behind the known
    bool m_hasEntities = false;
};

inline XmlAttributes::XmlAttributes(std::string_view tag, std::size_t offset)
    : m_tag(tag.data()), m_at(m_tag + offset) {
    const std::size_t last = tag.size() - 1;  // the ">"
    const bool isClosed = last > offset && (tag[last - 1] == '/' || (tag[1] == '?' && tag[last - 1] == '?'));
    m_end = std::max(m_at, m_tag + (isClosed ? last - 1 : last));
}

inline bool XmlAttributes::NextIs(std::string_view name, std::string_view& value) {
    constexpr std::string_view Blank = " ";
    constexpr std::string_view ValueStart = "=\"";
    std::string_view rest(m_at, static_cast<std::size_t>(m_end - m_at));
    for (const std::string_view part : {Blank, name, ValueStart}) {
        if (!rest.starts_with(part)) {
            return false;
        }
        rest.remove_prefix(part.size());
    }
    const char* const close = FindXmlByte(rest.data(), m_end, '"');
    if (close == m_end) {
        return false;
    }
    value = {rest.data(), static_cast<std::size_t>(close - rest.data())};
    m_at = close + 1;
    return true;
}
