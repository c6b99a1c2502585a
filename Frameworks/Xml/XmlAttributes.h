// Walks the attributes of one tag. Like the scanner it takes a quoted run as one unit anywhere in the tag, so a change
// at any of its offsets leaves the rest of the tag readable as before. One thread at a time.
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
    // `tag` from the "<" to the ">"; the walk starts at `offset`, after the name.
    XmlAttributes(std::string_view tag, std::size_t offset);

    // Returns false after the last, and leaves the attribute unchanged.
    bool Next(XmlAttribute& attribute);
    // Twice as fast, for the usual form: takes the next attribute if it is a blank, the name, "=" and a value in double
    // quotes. Otherwise returns false and takes nothing.
    bool NextIs(std::string_view name, std::string_view& value);

private:
    const char* m_tag = nullptr;
    const char* m_at = nullptr;
    const char* m_end = nullptr;  // of the attributes: at the ">" or "/>" or "?>"
};

// Returns true and the first attribute of that name, if there is one. `nameEnd` is the offset after the tag's own name.
bool FindXmlAttribute(std::string_view tag, std::size_t nameEnd, std::string_view name, XmlAttribute& attribute);

// Finds several attributes of one tag with one walk over it.
class XmlAttributeFinder {
public:
    // Keeps views into `tag`.
    void Start(std::string_view tag, std::size_t nameEnd);

    // The value of the first attribute of that name, entities decoded; empty if there is none.
    std::string ValueOf(std::string_view name) const;

private:
    static constexpr std::size_t MaxKnown = 8;  // later attributes are searched for on each call

    struct Known {
        std::string_view name;
        std::string_view value;
    };

    std::string_view TextOf(std::string_view name) const;

    std::array<Known, MaxKnown> m_known{};
    std::size_t m_count = 0;
    XmlAttributes m_rest;  // after the known ones
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
