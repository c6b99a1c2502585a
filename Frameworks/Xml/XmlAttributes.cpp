#include "Frameworks/Xml/XmlAttributes.h"

#include <algorithm>

#include "Frameworks/Xml/XmlBytes.h"

namespace {

bool IsQuote(char byte) { return byte == '"' || byte == '\''; }

const char* BehindWhiteSpace(const char* at, const char* end) {
    while (at != end && IsXmlWhiteSpace(*at)) {
        ++at;
    }
    return at;
}

// Behind a byte or a quoted run.
const char* BehindUnit(const char* at, const char* end) {
    if (!IsQuote(*at)) {
        return at + 1;
    }
    const char* const close = FindXmlByte(at + 1, end, *at);
    return close == end ? end : close + 1;
}

// A quoted run within it is a part of the name.
const char* BehindName(const char* at, const char* end) {
    for (;;) {
        while (at != end && !StopsXmlAttributeName(*at)) {
            ++at;
        }
        if (at == end || !IsQuote(*at)) {
            return at;
        }
        at = BehindUnit(at, end);
    }
}

std::string_view Between(const char* start, const char* end) { return {start, static_cast<std::size_t>(end - start)}; }

}  // namespace

XmlAttributes::XmlAttributes(std::string_view tag, std::size_t offset) : m_tag(tag.data()), m_at(m_tag + offset) {
    const std::size_t last = tag.size() - 1;  // the ">"
    const bool isClosed = last > offset && (tag[last - 1] == '/' || (tag[1] == '?' && tag[last - 1] == '?'));
    m_end = std::max(m_at, m_tag + (isClosed ? last - 1 : last));
}

void XmlAttributes::TakeValue(const char* start, XmlAttribute& attribute) {
    if (IsQuote(*start)) {
        // The quote may be missing in a processing instruction, whose end does not look at quotes.
        const char* const close = FindXmlByte(start + 1, m_end, *start);
        attribute.value = Between(start + 1, close);
        m_at = close == m_end ? m_end : close + 1;
        return;
    }
    m_at = start;
    while (m_at != m_end && !IsXmlWhiteSpace(*m_at)) {
        m_at = BehindUnit(m_at, m_end);
    }
    attribute.value = Between(start, m_at);
}

bool XmlAttributes::Next(XmlAttribute& attribute) {
    while (m_at != m_end && (IsXmlWhiteSpace(*m_at) || *m_at == '/')) {
        ++m_at;
    }
    if (m_at == m_end) {
        return false;
    }
    const char* const nameEnd = BehindName(m_at, m_end);
    attribute.name = Between(m_at, nameEnd);
    attribute.value = {};
    m_at = BehindWhiteSpace(nameEnd, m_end);
    attribute.hasEqualSign = m_at != m_end && *m_at == '=';
    const char* valueStart = nameEnd;
    const char* valueEnd = nameEnd;
    if (attribute.hasEqualSign) {
        valueStart = valueEnd = m_at + 1;
        m_at = BehindWhiteSpace(m_at + 1, m_end);
        if (m_at != m_end) {
            valueStart = m_at;
            TakeValue(valueStart, attribute);
            valueEnd = m_at;
        }
    }
    attribute.valueStart = static_cast<std::size_t>(valueStart - m_tag);
    attribute.valueEnd = static_cast<std::size_t>(valueEnd - m_tag);
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

void XmlAttributeFinder::Start(std::string_view tag, std::size_t nameEnd) {
    m_rest = XmlAttributes(tag, nameEnd);
    m_count = 0;
}

std::string_view XmlAttributeFinder::ValueOf(std::string_view name) {
    for (std::size_t at = 0; at < m_count; ++at) {
        if (m_known[at].name == name) {
            return m_known[at].value;
        }
    }
    return WalkFor(name);
}

std::string_view XmlAttributeFinder::WalkFor(std::string_view name) {
    XmlAttribute attribute;
    while (m_count < Most && m_rest.Next(attribute)) {
        m_known[m_count++] = {attribute.name, attribute.value};
        if (attribute.name == name) {
            return attribute.value;
        }
    }
    for (XmlAttributes unknown = m_rest; unknown.Next(attribute);) {
        if (attribute.name == name) {
            return attribute.value;
        }
    }
    return {};
}
