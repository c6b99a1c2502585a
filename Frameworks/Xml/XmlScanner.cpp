#include "Frameworks/Xml/XmlScanner.h"

#include <algorithm>
#include <cstdint>

#include "Frameworks/Xml/XmlBytes.h"

namespace {

constexpr std::size_t NotFound = std::string_view::npos;

// The ">" that ends a tag, from `at` after its name, found from quote to quote; `end` if there is none.
const char* WalkToTagEnd(const char* at, const char* end) {
    for (;;) {
        at = std::find_if(at, end, StopsXmlTag);
        if (at == end || *at == '>') {
            return at;
        }
        at = FindXmlByte(at + 1, end, *at);
        if (at == end) {
            return end;
        }
        ++at;
    }
}

// The same, faster: the next ">" is the end if the quotes before it come in pairs. With apostrophes among them, only
// the walk shows which of the two is within the other.
const char* FindTagEnd(const char* at, const char* end) {
    for (;;) {
        const char* const close = FindXmlByte(at, end, '>');
        std::uint8_t isQuoted = 0;
        std::uint8_t hasApostrophe = 0;
        for (const char* byte = at; byte != close; ++byte) {
            isQuoted = static_cast<std::uint8_t>(isQuoted ^ (*byte == '"' ? 1 : 0));
            hasApostrophe = static_cast<std::uint8_t>(hasApostrophe | (*byte == '\'' ? 1 : 0));
        }
        if (hasApostrophe != 0) {
            return WalkToTagEnd(at, end);
        }
        if (isQuoted == 0 || close == end) {
            return close;
        }
        at = FindXmlByte(close, end, '"');
        if (at == end) {
            return end;
        }
        ++at;
    }
}

}  // namespace

const XmlToken& XmlScanner::Next() {
    m_token = XmlToken{};
    m_token.start = m_offset;
    if (m_offset >= m_text.size()) {
        Finish(XmlTokenKind::EndOfText, m_text.size());
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
        ScanTag(XmlTokenKind::StartTag, m_offset + 1);
    } else if (second == '/') {
        ScanTag(XmlTokenKind::EndTag, m_offset + 2);
    } else if (second == '!') {
        ScanDeclaration();
    } else if (second == '?') {
        ScanUntil(XmlTokenKind::ProcessingInstruction, "processing_instruction", m_offset + 2, "?>");
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
    Finish(XmlTokenKind::Faulty, m_text.size());
}

void XmlScanner::SkipFault(const char* fault, std::size_t faultOffset) {
    m_token.fault = fault;
    m_token.faultOffset = faultOffset;
    const std::size_t end = m_text.find('>', faultOffset);
    if (end == NotFound) {
        CutOff("tag");
        return;
    }
    Finish(XmlTokenKind::Faulty, end + 1);
}

void XmlScanner::ScanText() {
    const std::size_t end = m_text.find('<', m_offset);
    Finish(XmlTokenKind::Text, end == NotFound ? m_text.size() : end);
}

void XmlScanner::ScanTag(XmlTokenKind kind, std::size_t nameStart) {
    const char* const end = m_text.data() + m_text.size();
    const char* const name = m_text.data() + nameStart;
    const char* const nameEnd = std::find_if(name, end, EndsXmlName);
    const char* const close = FindTagEnd(nameEnd, end);
    m_token.name = {name, static_cast<std::size_t>(nameEnd - name)};
    if (close == end) {
        CutOff(kind == XmlTokenKind::StartTag ? "start_tag" : "end_tag");
        return;
    }
    m_token.isEmptyElement = kind == XmlTokenKind::StartTag && close[-1] == '/';
    Finish(kind, static_cast<std::size_t>(close - m_text.data()) + 1);
}

void XmlScanner::ScanUntil(XmlTokenKind kind, const char* type, std::size_t from, std::string_view terminator) {
    const std::size_t end = m_text.find(terminator, from);
    if (end == NotFound) {
        CutOff(type);
        return;
    }
    if (kind == XmlTokenKind::ProcessingInstruction) {
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
                ScanUntil(XmlTokenKind::Comment, "comment", third + 2, "-->");
            }
            return;
        case '[':
            if (isLast) {
                CutOff("cdata_section");
            } else if (fourth != 'C') {
                SkipFault("cdata_section_syntax", m_offset);
            } else {
                ScanUntil(XmlTokenKind::CDataSection, "cdata_section", third + 2, "]]>");
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
            Finish(XmlTokenKind::DocumentType, at + 1);
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

// The end of a comment or processing instruction that starts at the "<", or the offset after the "<" of a declaration.
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
