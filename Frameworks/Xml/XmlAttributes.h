// Walks the attributes of one tag. Like the scanner it takes a quoted run as a unit wherever it stands, so that a cut
// at any of its offsets leaves the rest of the tag to be read as before.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

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
