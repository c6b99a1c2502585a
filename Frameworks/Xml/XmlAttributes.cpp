#include "Frameworks/Xml/XmlAttributes.h"

#include "Frameworks/Xml/XmlScanner.h"

XmlAttributes::XmlAttributes(std::string_view tag, std::size_t offset) : m_tag(tag), m_offset(offset) {
    const std::size_t last = tag.size() - 1;  // the ">"
    const bool isClosed = last > offset && (tag[last - 1] == '/' || (tag[1] == '?' && tag[last - 1] == '?'));
    m_end = isClosed ? last - 1 : last;
    m_end = m_end < offset ? offset : m_end;
}

void XmlAttributes::SkipWhiteSpace() {
    while (m_offset < m_end && IsXmlWhiteSpace(m_tag[m_offset])) {
        ++m_offset;
    }
}

void XmlAttributes::SkipUnit() {
    const char byte = m_tag[m_offset];
    ++m_offset;
    if (byte != '"' && byte != '\'') {
        return;
    }
    const std::size_t end = m_tag.find(byte, m_offset);
    m_offset = end == std::string_view::npos || end >= m_end ? m_end : end + 1;
}

bool XmlAttributes::Next(XmlAttribute& attribute) {
    while (m_offset < m_end && (IsXmlWhiteSpace(m_tag[m_offset]) || m_tag[m_offset] == '/')) {
        ++m_offset;
    }
    if (m_offset >= m_end) {
        return false;
    }
    const std::size_t nameStart = m_offset;
    while (m_offset < m_end && !IsXmlWhiteSpace(m_tag[m_offset]) && m_tag[m_offset] != '=') {
        SkipUnit();
    }
    attribute = XmlAttribute{};
    attribute.name = m_tag.substr(nameStart, m_offset - nameStart);
    attribute.valueStart = attribute.valueEnd = m_offset;

    SkipWhiteSpace();
    if (m_offset >= m_end || m_tag[m_offset] != '=') {
        return true;
    }
    attribute.hasEqualSign = true;
    ++m_offset;
    attribute.valueStart = attribute.valueEnd = m_offset;
    SkipWhiteSpace();
    if (m_offset >= m_end) {
        return true;
    }
    attribute.valueStart = m_offset;
    const char quote = m_tag[m_offset];
    const bool isQuoted = quote == '"' || quote == '\'';
    do {
        SkipUnit();
    } while (!isQuoted && m_offset < m_end && !IsXmlWhiteSpace(m_tag[m_offset]));
    attribute.valueEnd = m_offset;
    attribute.value = m_tag.substr(attribute.valueStart, m_offset - attribute.valueStart);
    if (isQuoted) {
        attribute.value.remove_prefix(1);
        // The quote may be missing in a processing instruction, whose end does not look at quotes.
        attribute.value = attribute.value.substr(0, attribute.value.find(quote));
    }
    return true;
}

bool FindXmlAttribute(std::string_view tag, std::size_t nameEnd, std::string_view name, XmlAttribute& attribute) {
    XmlAttributes attributes(tag, nameEnd);
    while (attributes.Next(attribute)) {
        if (attribute.name == name) {
            return true;
        }
    }
    return false;
}
