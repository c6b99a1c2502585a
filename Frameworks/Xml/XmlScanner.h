// Takes a text apart into tags and other tokens, one at a time, by a walk over its bytes that stops at no fault. It
// keeps no copy: the text has to outlive it.
#pragma once

#include <cstddef>
#include <string_view>

// What a token is.
enum class XmlTokenKind {
    END_OF_TEXT_TOKEN,
    TEXT_TOKEN,
    START_TAG_TOKEN,
    END_TAG_TOKEN,
    PROCESSING_INSTRUCTION_TOKEN,
    COMMENT_TOKEN,
    CDATA_SECTION_TOKEN,
    DOCUMENT_TYPE_TOKEN,
    FAULTY_TOKEN,  // not a tag, or cut off by the end of the text
};

// A piece of the text; offsets and views into it.
struct XmlToken {
    XmlTokenKind kind = XmlTokenKind::END_OF_TEXT_TOKEN;
    std::size_t start = 0;
    std::size_t end = 0;           // behind the last byte
    std::string_view name;         // of a start tag, an end tag or a processing instruction
    bool isEmptyElement = false;   // a start tag that ends in "/>"
    const char* fault = nullptr;   // key of a syntax report
    std::size_t faultOffset = 0;   // the "<" at fault
    const char* cutOff = nullptr;  // what kind of token the end of the text cut off
};

class XmlScanner {
public:
    explicit XmlScanner(std::string_view text, std::size_t offset = 0) : m_text(text), m_offset(offset) {}

    // The token is overwritten by the next call.
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
