// Builds the index of a text and reports its faults. One object for one parse, on the document's thread.
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
    // The text must fit the words of the index, and the index must be reset. Reports are added to `result`.
    XmlParser(std::string_view text, XmlIndex& index, std::string& result);

    // Call once.
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
    // How often each name is open. Empty until an end tag first fails to match the innermost element; after that a
    // look-up replaces the walk over all open elements.
    std::map<std::string_view, std::size_t> m_openNames;
    bool m_countsNames = false;
    bool m_hasLifted = false;
};
