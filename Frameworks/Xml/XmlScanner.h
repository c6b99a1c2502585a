// Splits a text into tags and other tokens, one at a time. No fault stops it. It keeps no copy: the text must outlive
// it. One thread at a time.
#pragma once

#include <cstddef>
#include <string_view>

// The kind of a token.
enum class XmlTokenKind {
    EndOfText,
    Text,
    StartTag,
    EndTag,
    ProcessingInstruction,
    Comment,
    CDataSection,
    DocumentType,
    Faulty,  // not a tag, or cut off by the end of the text
};

// A part of the text, by offsets and views.
struct XmlToken {
    XmlTokenKind kind = XmlTokenKind::EndOfText;
    std::size_t start = 0;
    std::size_t end = 0;           // after the last byte
    std::string_view name;         // of a start tag, an end tag or a processing instruction
    bool isEmptyElement = false;   // a start tag that ends in "/>"
    const char* fault = nullptr;   // key of a syntax report
    std::size_t faultOffset = 0;   // the "<" at fault
    const char* cutOff = nullptr;  // the kind of token that the end of the text cut off
};

class XmlScanner {
public:
    explicit XmlScanner(std::string_view text, std::size_t offset = 0) : m_text(text), m_offset(offset) {}

    // The next call overwrites the token.
    const XmlToken& Next();
    void Seek(std::size_t offset) { m_offset = offset; }

private:
    void ScanText();
    void ScanTag(XmlTokenKind kind, std::size_t nameStart);
    void ScanDeclaration();
    void ScanDocumentType();
    void ScanUntil(XmlTokenKind kind, const char* type, std::size_t from, std::string_view terminator);
    void SkipFault(const char* fault, std::size_t faultOffset);
    void Finish(XmlTokenKind kind, std::size_t end);
    void CutOff(const char* type);
    std::size_t InDocumentType(std::size_t at, bool& isFault) const;
    char ByteAt(std::size_t offset) const { return offset < m_text.size() ? m_text[offset] : '\0'; }

    std::string_view m_text;
    std::size_t m_offset;
    XmlToken m_token;
};
