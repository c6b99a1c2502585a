#include "Frameworks/Xml/XmlDocument.h"

#include <cerrno>
#include <cstring>

#include "Frameworks/Xml/XmlAttributes.h"
#include "Frameworks/Xml/XmlBytes.h"
#include "Frameworks/Xml/XmlEntities.h"
#include "Frameworks/Xml/XmlParser.h"
#include "Frameworks/Xml/XmlReport.h"
#include "Frameworks/Xml/XmlScanner.h"

namespace {

constexpr std::size_t BytesPerRecord = 64;  // expected length of an element
constexpr std::size_t SpareRecords = 8;

// The content of a CDATA section begins after its second "[".
std::string_view CDataContent(std::string_view section) {
    constexpr std::string_view Start = "<![";
    constexpr std::string_view End = "]]>";
    section.remove_suffix(End.size());
    const std::size_t bracket = section.find('[', Start.size());
    return bracket == std::string_view::npos ? std::string_view() : section.substr(bracket + 1);
}

}  // namespace

bool XmlDocument::SetDocumentText(const char* text) {
    m_result.clear();
    const std::string_view content = text == nullptr ? std::string_view() : std::string_view(text);
    const bool fits = content.size() <= MaxTextSize;
    if (!fits) {
        AddXmlReport(m_result, "file_error", {.msg = std::strerror(EFBIG)});
    }
    m_text.assign(fits ? content : std::string_view());
    return Parse();
}

bool XmlDocument::Load(const char* path) {
    m_result.clear();
    const bool isRead = ReadXmlFile(path, MaxTextSize, m_text, m_form, m_result);
    return Parse() && isRead;
}

bool XmlDocument::Save(const char* path) {
    m_result.clear();
    return WriteXmlFile(path, m_text, m_form, m_result);
}

bool XmlDocument::Parse() {
    ResetPosition();
    m_attributesOf = 0;
    m_index.Reset(m_text.size() / BytesPerRecord + SpareRecords);
    if (!m_text.empty()) {
        XmlParser(m_text, m_index, m_result).Run();
    }
    return IsWellFormed();
}

bool XmlDocument::IsWellFormed() const {
    if (!m_index.Exists() || (m_index.At(0).flags & XmlIndex::IllFormedFlag) != 0) {
        return false;
    }
    const std::uint32_t root = m_index.At(0).firstChild;
    return root != 0 && m_index.At(root).nextSibling == 0;
}

std::string XmlDocument::GetResultText() const { return XmlReportText(m_result); }

void XmlDocument::SetPosition(std::uint32_t parent, std::uint32_t main, std::uint32_t child) {
    m_parent = parent;
    m_main = main;
    m_child = child;
}

void XmlDocument::ResetPosition() { SetPosition(0, 0, 0); }

void XmlDocument::ResetMainPosition() { SetPosition(m_parent, 0, 0); }

bool XmlDocument::FindElement(const char* name) {
    if (!m_index.Exists()) {
        return false;
    }
    const std::string_view wanted = name == nullptr ? std::string_view() : std::string_view(name);
    std::uint32_t index = m_main == 0 ? m_index.At(m_parent).firstChild : m_index.At(m_main).nextSibling;
    while (index != 0 && name != nullptr && NameAt(index) != wanted) {
        index = m_index.At(index).nextSibling;
    }
    if (index == 0) {
        return false;
    }
    SetPosition(m_parent, index, 0);
    return true;
}

bool XmlDocument::IntoElement() {
    if (m_main == 0) {
        return false;
    }
    SetPosition(m_main, m_child, 0);
    return true;
}

bool XmlDocument::OutOfElement() {
    if (m_parent == 0) {
        return false;
    }
    SetPosition(m_index.At(m_parent).parent, m_parent, m_main);
    return true;
}

std::string_view XmlDocument::StartTag(std::uint32_t index) const {
    return std::string_view(m_text).substr(m_index.At(index).start, m_index.StartTagLength(index));
}

std::string_view XmlDocument::NameAt(std::uint32_t index) const {
    const char* const name = m_text.data() + m_index.At(index).start + 1;
    const char* end = name;
    while (!EndsXmlName(*end)) {
        ++end;
    }
    return {name, static_cast<std::size_t>(end - name)};
}

std::string XmlDocument::GetTagName() const { return m_main == 0 ? std::string() : std::string(NameAt(m_main)); }

std::string XmlDocument::GetAttribute(const char* name) const {
    if (m_main == 0 || name == nullptr) {
        return {};
    }
    if (m_attributesOf != m_main) {
        m_attributes.Start(StartTag(m_main), 1 + NameAt(m_main).size());
        m_attributesOf = m_main;
    }
    return m_attributes.ValueOf(name);
}

std::string_view XmlDocument::GetStartTag() const { return m_main == 0 ? std::string_view() : StartTag(m_main); }

std::string XmlDocument::GetData() const {
    std::string data;
    if (m_main == 0) {
        return data;
    }
    const std::string_view text =
        std::string_view(m_text).substr(0, m_index.End(m_main) - m_index.EndTagLength(m_main));
    XmlScanner scanner(text, m_index.At(m_main).start + std::size_t{m_index.StartTagLength(m_main)});
    std::uint32_t child = m_index.At(m_main).firstChild;
    for (const XmlToken* token = &scanner.Next(); token->kind != XmlTokenKind::EndOfText; token = &scanner.Next()) {
        const std::string_view content = text.substr(token->start, token->end - token->start);
        if (token->kind == XmlTokenKind::Text) {
            data += DecodeXml(content);
        } else if (token->kind == XmlTokenKind::CDataSection) {
            data += CDataContent(content);
        } else if (child != 0 && token->start == m_index.At(child).start) {
            scanner.Seek(m_index.End(child));
            child = m_index.At(child).nextSibling;
        }
    }
    return data;
}
