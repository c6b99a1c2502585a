#include "Frameworks/Xml/XmlScanner.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

constexpr std::size_t NotFound = std::string_view::npos;

enum ByteClass : std::uint8_t { WHITE_SPACE_CLASS = 1, NAME_START_CLASS = 2, NAME_END_CLASS = 4, TAG_STOP_CLASS = 8 };

constexpr std::array<std::uint8_t, 256> MakeByteClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (const char byte : {'\t', '\n', '\r', ' '}) {
        classes[static_cast<unsigned char>(byte)] = WHITE_SPACE_CLASS | NAME_END_CLASS;
    }
    for (std::size_t byte = 'A'; byte <= 'Z'; ++byte) {
        classes[byte] = NAME_START_CLASS;
    }
    // From the small letters up, which takes in every byte of a character beyond ASCII.
    for (std::size_t byte = 'a'; byte < classes.size(); ++byte) {
        classes[byte] = NAME_START_CLASS;
    }
    classes['_'] = NAME_START_CLASS;
    classes[':'] = NAME_START_CLASS;
    classes['/'] = NAME_END_CLASS;
    classes['>'] = NAME_END_CLASS | TAG_STOP_CLASS;
    classes['"'] = TAG_STOP_CLASS;
    classes['\''] = TAG_STOP_CLASS;
    return classes;
}

constexpr std::array<std::uint8_t, 256> ByteClasses = MakeByteClasses();

bool Is(char byte, ByteClass byteClass) { return (ByteClasses[static_cast<unsigned char>(byte)] & byteClass) != 0; }

}  // namespace

bool IsXmlWhiteSpace(char byte) { return Is(byte, WHITE_SPACE_CLASS); }

bool IsXmlNameStart(char byte) { return Is(byte, NAME_START_CLASS); }

bool EndsXmlName(char byte) { return Is(byte, NAME_END_CLASS); }

const XmlToken& XmlScanner::Next() {
    m_token = XmlToken{};
    m_token.start = m_offset;
    if (m_offset >= m_text.size()) {
        Finish(XmlTokenKind::END_OF_TEXT_TOKEN, m_text.size());
        return m_token;
    }
    if (m_text[m_offset] != '<') {
        ScanText();
        return m_token;
    }
    if (m_offset + 1 == m_text.size()) {
        CutOff("tag");
        return m_token;
    }
    const char second = m_text[m_offset + 1];
    if (IsXmlNameStart(second)) {
        ScanTag(XmlTokenKind::START_TAG_TOKEN, m_offset + 1);
    } else if (second == '/') {
        ScanTag(XmlTokenKind::END_TAG_TOKEN, m_offset + 2);
    } else if (second == '!') {
        ScanDeclaration();
    } else if (second == '?') {
        ScanUntil(XmlTokenKind::PROCESSING_INSTRUCTION_TOKEN, "processing_instruction", m_offset + 2, "?>");
    } else {
        SkipFault("first_tag_syntax", m_offset);
    }
    return m_token;
}

void XmlScanner::Finish(XmlTokenKind kind, std::size_t end) {
    m_token.kind = kind;
    m_token.end = end;
    m_offset = end;
}

void XmlScanner::CutOff(const char* type) {
    m_token.cutOff = type;
    Finish(XmlTokenKind::FAULTY_TOKEN, m_text.size());
}

void XmlScanner::SkipFault(const char* fault, std::size_t faultOffset) {
    m_token.fault = fault;
    m_token.faultOffset = faultOffset;
    const std::size_t end = m_text.find('>', faultOffset);
    if (end == NotFound) {
        CutOff("tag");
        return;
    }
    Finish(XmlTokenKind::FAULTY_TOKEN, end + 1);
}

void XmlScanner::ScanText() {
    const std::size_t end = m_text.find('<', m_offset);
    Finish(XmlTokenKind::TEXT_TOKEN, end == NotFound ? m_text.size() : end);
}

void XmlScanner::ScanTag(XmlTokenKind kind, std::size_t nameStart) {
    const char* const end = m_text.data() + m_text.size();
    const char* at = m_text.data() + nameStart;
    while (at != end && !EndsXmlName(*at)) {
        ++at;
    }
    m_token.name = m_text.substr(nameStart, static_cast<std::size_t>(at - m_text.data()) - nameStart);
    for (;;) {
        while (at != end && !Is(*at, TAG_STOP_CLASS)) {
            ++at;
        }
        if (at == end) {
            break;
        }
        if (*at == '>') {
            m_token.isEmptyElement = kind == XmlTokenKind::START_TAG_TOKEN && at[-1] == '/';
            Finish(kind, static_cast<std::size_t>(at - m_text.data()) + 1);
            return;
        }
        const char quote = *at++;
        at = std::find(at, end, quote);
        if (at == end) {
            break;
        }
        ++at;
    }
    CutOff(kind == XmlTokenKind::START_TAG_TOKEN ? "start_tag" : "end_tag");
}

void XmlScanner::ScanUntil(XmlTokenKind kind, const char* type, std::size_t from, std::string_view terminator) {
    const std::size_t end = m_text.find(terminator, from);
    if (end == NotFound) {
        CutOff(type);
        return;
    }
    if (kind == XmlTokenKind::PROCESSING_INSTRUCTION_TOKEN) {
        std::size_t nameEnd = from;
        while (nameEnd < end && !EndsXmlName(m_text[nameEnd])) {
            ++nameEnd;
        }
        m_token.name = m_text.substr(from, nameEnd - from);
    }
    Finish(kind, end + terminator.size());
}

void XmlScanner::ScanDeclaration() {
    const std::size_t third = m_offset + 2;
    if (third == m_text.size()) {
        CutOff("tag");
        return;
    }
    const bool isLast = third + 1 == m_text.size();
    const char fourth = ByteAt(third + 1);
    switch (m_text[third]) {
        case '-':
            if (isLast) {
                CutOff("comment");
            } else if (fourth != '-') {
                SkipFault("comment_tag_syntax", m_offset);
            } else {
                ScanUntil(XmlTokenKind::COMMENT_TOKEN, "comment", third + 2, "-->");
            }
            return;
        case '[':
            if (isLast) {
                CutOff("cdata_section");
            } else if (fourth != 'C') {
                SkipFault("cdata_section_syntax", m_offset);
            } else {
                ScanUntil(XmlTokenKind::CDATA_SECTION_TOKEN, "cdata_section", third + 2, "]]>");
            }
            return;
        case 'D':
            ScanDocumentType();
            return;
        default:
            SkipFault("exclamation_tag_syntax", m_offset);
    }
}

void XmlScanner::ScanDocumentType() {
    std::size_t nesting = 1;
    for (std::size_t at = m_offset + 3; at < m_text.size();) {
        const char byte = m_text[at];
        if (byte == '>' && --nesting == 0) {
            Finish(XmlTokenKind::DOCUMENT_TYPE_TOKEN, at + 1);
            return;
        }
        std::size_t next = at + 1;
        if (byte == '"' || byte == '\'') {
            next = m_text.find(byte, at + 1);
            next += next == NotFound ? 0 : 1;
        } else if (byte == '<') {
            bool isFault = false;
            next = InDocumentType(at, isFault);
            if (isFault) {
                SkipFault("doctype_tag_syntax", at);
                return;
            }
            nesting += next == at + 1 ? 1 : 0;
        }
        at = next;
    }
    CutOff("document_type");
}

// Behind a comment or processing instruction that starts at the "<", or right behind the "<" of a declaration.
std::size_t XmlScanner::InDocumentType(std::size_t at, bool& isFault) const {
    const bool isDeclaration = ByteAt(at + 1) == '!';
    const char third = ByteAt(at + 2);
    if (!isDeclaration && ByteAt(at + 1) != '?') {
        return at + 1;
    }
    if (isDeclaration && third != '-') {
        isFault = at + 2 < m_text.size() && third != 'A' && third != 'E' && third != 'N';
        return at + 1;
    }
    const std::string_view terminator = isDeclaration ? "-->" : "?>";
    const std::size_t end = m_text.find(terminator, at + (isDeclaration ? 4 : 2));
    return end == NotFound ? m_text.size() : end + terminator.size();
}
