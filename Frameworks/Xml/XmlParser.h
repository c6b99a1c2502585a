// Builds the index of a text and notes what is wrong with it. Used for one parse, by the document's thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Frameworks/Xml/XmlIndex.h"
#include "Frameworks/Xml/XmlScanner.h"

class XmlParser {
public:
    // The text fits the words of the index; the index is reset and takes everything below record 0. Reports are added
    // to `result`.
    XmlParser(std::string_view text, XmlIndex& index, std::string& result);

    // Once.
    void Run();

private:
    struct OpenElement {
        std::uint32_t index;
        std::uint32_t nameLength;
        std::uint32_t lastChild;  // so far, 0 for none
    };

    void AddElement(const XmlToken& token);
    void CloseElement(const XmlToken& token);
    void EndOpenElements(std::size_t count, std::uint32_t closedAt);
    void NoteFault(const XmlToken& token);
    void NoteLoneEndTag(const XmlToken& token);
    bool IsOpen(std::string_view name);
    void Push(const OpenElement& element);
    void Pop();
    std::string_view NameOf(const OpenElement& element) const;
    std::uint32_t Current() const { return m_open.back().index; }
    std::size_t OpenCount() const { return m_open.size() - 1; }

    std::string_view m_text;
    XmlIndex& m_index;
    std::string& m_result;
    std::vector<OpenElement> m_open;  // the first one is record 0, which no end tag closes
    // How often each name is open. It stays empty until an end tag first fails to match the innermost element: from
    // then on a look-up replaces the walk through all that is open.
    std::map<std::string_view, std::size_t> m_openNames;
    bool m_countsNames = false;
    bool m_hasLifted = false;
};
