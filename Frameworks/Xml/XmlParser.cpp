#include "Frameworks/Xml/XmlParser.h"

#include "Frameworks/Xml/XmlReport.h"

XmlParser::XmlParser(std::string_view text, XmlIndex& index, std::string& result)
    : m_text(text), m_index(index), m_result(result), m_open(1) {}

void XmlParser::Run() {
    XmlScanner scanner(m_text);
    for (;;) {
        const XmlToken& token = scanner.Next();
        if (token.kind == XmlTokenKind::StartTag) {
            AddElement(token);
        } else if (token.kind == XmlTokenKind::EndTag) {
            CloseElement(token);
        } else if (token.kind == XmlTokenKind::Faulty) {
            NoteFault(token);
        } else if (token.kind == XmlTokenKind::EndOfText) {
            break;
        }
    }
    EndOpenElements(OpenCount(), static_cast<std::uint32_t>(m_text.size()));
    if (m_hasLifted) {
        m_index.RenumberDepths();
    }
    XmlRecord& top = m_index.At(0);
    top.length = static_cast<std::uint32_t>(m_text.size());
    if ((top.flags & XmlIndex::IllFormedInsideFlag) != 0) {
        top.flags |= XmlIndex::IllFormedFlag;
    }
    if (top.firstChild == 0) {
        AddXmlReport(m_result, "no_root_element");
    } else if (m_index.At(top.firstChild).nextSibling != 0) {
        AddXmlReport(m_result, "root_has_sibling");
    }
}

void XmlParser::AddElement(const XmlToken& token) {
    OpenElement& parent = m_open.back();
    parent.lastChild = m_index.AddLast(parent.index, parent.lastChild, static_cast<std::uint32_t>(token.start),
                                       static_cast<std::uint32_t>(token.end - token.start));
    if (!token.isEmptyElement) {
        Push({parent.lastChild, static_cast<std::uint32_t>(token.name.size()), 0});
    }
}

void XmlParser::CloseElement(const XmlToken& token) {
    if (OpenCount() == 0 || NameOf(m_open.back()) != token.name) {
        if (!IsOpen(token.name)) {
            NoteLoneEndTag(token);
            return;
        }
        std::size_t above = 0;
        while (NameOf(m_open[m_open.size() - 1 - above]) != token.name) {
            ++above;
        }
        EndOpenElements(above, static_cast<std::uint32_t>(token.start));
    }
    const std::uint32_t index = m_open.back().index;
    XmlRecord& record = m_index.At(index);
    m_index.SetTagLengths(index, record.length, static_cast<std::uint32_t>(token.end - token.start));
    record.length = static_cast<std::uint32_t>(token.end) - record.start;
    Pop();
}

// The innermost `count` open elements have no end tag: each is only its start tag, and its children become its
// following siblings.
void XmlParser::EndOpenElements(std::size_t count, std::uint32_t closedAt) {
    if (count == 0) {
        return;
    }
    std::uint32_t outermost = 0;
    for (std::size_t ended = 0; ended < count; ++ended) {
        outermost = Current();
        m_index.LiftChildren(outermost);
        m_index.At(outermost).flags |= XmlIndex::NoEndTagFlag;
        AddXmlReport(m_result, "unended_start_tag",
                     {.tagname = NameOf(m_open.back()), .offset = m_index.At(outermost).start, .offset2 = closedAt});
        Pop();
    }
    m_index.Adopt(Current(), outermost);
    m_open.back().lastChild = m_index.LastChild(Current());
    m_index.MarkIllFormed(Current());
    m_hasLifted = true;
}

void XmlParser::NoteLoneEndTag(const XmlToken& token) {
    AddXmlReport(m_result, "lone_end_tag", {.tagname = token.name, .offset = token.start});
    m_index.MarkIllFormed(0);
    m_index.MarkIllFormedInside(Current());
}

void XmlParser::NoteFault(const XmlToken& token) {
    if (token.fault != nullptr) {
        AddXmlReport(m_result, token.fault, {.offset = token.faultOffset});
    }
    if (token.cutOff != nullptr) {
        AddXmlReport(m_result, "unterminated_tag_syntax", {.type = token.cutOff, .offset = token.start});
    }
    m_index.MarkIllFormed(0);
    m_index.MarkIllFormedInside(Current());
}

bool XmlParser::IsOpen(std::string_view name) {
    if (!m_countsNames) {
        m_countsNames = true;
        for (std::size_t at = 1; at < m_open.size(); ++at) {
            ++m_openNames[NameOf(m_open[at])];
        }
    }
    return m_openNames.contains(name);
}

std::string_view XmlParser::NameOf(const OpenElement& element) const {
    return m_text.substr(m_index.At(element.index).start + 1, element.nameLength);
}

void XmlParser::Push(const OpenElement& element) {
    m_open.push_back(element);
    if (m_countsNames) {
        ++m_openNames[NameOf(element)];
    }
}

void XmlParser::Pop() {
    if (m_countsNames) {
        const auto found = m_openNames.find(NameOf(m_open.back()));
        if (--found->second == 0) {
            m_openNames.erase(found);
        }
    }
    m_open.pop_back();
}
