#include "Frameworks/Xml/XmlAttributes.h"

#include "Frameworks/Xml/XmlBytes.h"
#include "Frameworks/Xml/XmlEntities.h"

namespace {

bool IsQuote(char byte) { return byte == '"' || byte == '\''; }

const char* SkipWhiteSpace(const char* at, const char* end) {
    while (at != end && IsXmlWhiteSpace(*at)) {
        ++at;
    }
    return at;
}

// To the end of a byte or of a quoted run.
const char* SkipUnit(const char* at, const char* end) {
    if (!IsQuote(*at)) {
        return at + 1;
    }
    const char* const close = FindXmlByte(at + 1, end, *at);
    return close == end ? end : close + 1;
}

// To the end of what separates attributes.
const char* SkipGap(const char* at, const char* end) {
    while (at != end && (IsXmlWhiteSpace(*at) || *at == '/')) {
        ++at;
    }
    return at;
}

// A quoted run within a name is a part of it.
const char* SkipName(const char* at, const char* end) {
    for (;;) {
        while (at != end && !StopsXmlAttributeName(*at)) {
            ++at;
        }
        if (at == end || !IsQuote(*at)) {
            return at;
        }
        at = SkipUnit(at, end);
    }
}

std::string_view Between(const char* start, const char* end) { return {start, static_cast<std::size_t>(end - start)}; }

// `start` is before `end`.
const char* SkipValue(const char* start, const char* end, std::string_view& value) {
    if (IsQuote(*start)) {
        // The quote may be missing in a processing instruction, whose end does not look at quotes.
        const char* const close = FindXmlByte(start + 1, end, *start);
        value = Between(start + 1, close);
        return close == end ? end : close + 1;
    }
    const char* at = start;
    while (at != end && !IsXmlWhiteSpace(*at)) {
        at = SkipUnit(at, end);
    }
    value = Between(start, at);
    return at;
}

}  // namespace

bool XmlAttributes::Next(XmlAttribute& attribute) {
    const char* const end = m_end;
    const char* at = SkipGap(m_at, end);
    if (at == end) {
        m_at = end;
        return false;
    }
    const char* const nameEnd = SkipName(at, end);
    attribute.name = Between(at, nameEnd);
    attribute.value = {};
    at = SkipWhiteSpace(nameEnd, end);
    attribute.hasEqualSign = at != end && *at == '=';
    const char* valueStart = nameEnd;
    const char* valueEnd = nameEnd;
    if (attribute.hasEqualSign) {
        valueStart = valueEnd = at + 1;
        at = SkipWhiteSpace(valueStart, end);
        if (at != end) {
            valueStart = at;
            at = valueEnd = SkipValue(valueStart, end, attribute.value);
        }
    }
    attribute.valueStart = static_cast<std::size_t>(valueStart - m_tag);
    attribute.valueEnd = static_cast<std::size_t>(valueEnd - m_tag);
    m_at = at;
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
    m_hasEntities = tag.find('&', nameEnd) != std::string_view::npos;
    m_rest = XmlAttributes(tag, nameEnd);
    m_count = 0;
    XmlAttribute attribute;
    while (m_count < MaxKnown && m_rest.Next(attribute)) {
        m_known[m_count++] = {attribute.name, attribute.value};
    }
}

std::string XmlAttributeFinder::ValueOf(std::string_view name) const {
    const std::string_view text = TextOf(name);
    return m_hasEntities ? DecodeXml(text) : std::string(text);
}

std::string_view XmlAttributeFinder::TextOf(std::string_view name) const {
    for (std::size_t at = 0; at < m_count; ++at) {
        if (m_known[at].name == name) {
            return m_known[at].value;
        }
    }
    XmlAttribute attribute;
    for (XmlAttributes unknown = m_rest; unknown.Next(attribute);) {
        if (attribute.name == name) {
            return attribute.value;
        }
    }
    return {};
}
