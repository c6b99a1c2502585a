// Walks the attributes of one tag. Like the scanner it takes a quoted run as a unit wherever it stands, so that a cut
// at any of its offsets leaves the rest of the tag to be read as before.
#pragma once

#include <cstddef>
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
    // `tag` from the "<" to the ">"; the walk starts at `offset`, behind the name.
    XmlAttributes(std::string_view tag, std::size_t offset);

    // False behind the last, which leaves the attribute alone.
    bool Next(XmlAttribute& attribute);

private:
    void SkipWhiteSpace();
    void SkipUnit();  // a byte, or a quoted run

    std::string_view m_tag;
    std::size_t m_offset;
    std::size_t m_end;  // of the attributes: at the ">" or "/>" or "?>"
};

// True and the attribute, if the tag has one of that name. `nameEnd` is the offset behind the tag's own name.
bool FindXmlAttribute(std::string_view tag, std::size_t nameEnd, std::string_view name, XmlAttribute& attribute);
