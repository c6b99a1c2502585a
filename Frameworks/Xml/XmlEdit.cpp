// The changes of a document: each replaces one part of the text and moves the offsets of the index.
#include <algorithm>

#include "Frameworks/Xml/XmlAttributes.h"
#include "Frameworks/Xml/XmlBytes.h"
#include "Frameworks/Xml/XmlDocument.h"
#include "Frameworks/Xml/XmlEntities.h"

namespace {

constexpr std::size_t SpliceReserve = 128;
constexpr std::string_view EndTagStart = "</";

bool BreaksName(char byte) {
    return EndsXmlName(byte) || std::string_view("<=&\"'").find(byte) != std::string_view::npos;
}

// Whether the scanner would read the name back unchanged.
bool IsAttributeName(std::string_view name) {
    return !name.empty() && std::none_of(name.begin(), name.end(), BreaksName);
}

bool IsElementName(std::string_view name) { return IsAttributeName(name) && IsXmlNameStart(name.front()); }

struct ElementText {
    std::string text;
    std::size_t startTag = 0;
    std::size_t endTag = 0;
};

ElementText MakeElement(std::string_view name, std::string_view data, std::uint32_t flags) {
    ElementText element;
    element.text.append("<").append(name);
    if (data.empty()) {
        const bool isOpen = (flags & XmlDocument::NoEndTagFlag) != 0;
        const char* blank = (flags & XmlDocument::BlankFlag) != 0 ? " " : "";
        element.text.append(isOpen ? "" : blank).append(isOpen ? ">" : "/>");
        element.startTag = element.text.size();
        return element;
    }
    element.text += '>';
    element.startTag = element.text.size();
    element.text +=
        (flags & XmlDocument::CDataFlag) != 0 ? XmlCDataSection(data) : EscapeXml(data, XmlEscapeMode::Text);
    element.endTag = EndTagStart.size() + name.size() + 1;
    element.text.append(EndTagStart).append(name).append(">");
    return element;
}

struct AttributeChange {
    std::size_t start;    // in the tag
    std::size_t removed;  // bytes
    std::string text;
};

AttributeChange ChangeOfAttribute(std::string_view tag, std::size_t nameEnd, std::string_view name,
                                  std::string_view value) {
    std::string quoted = "\"" + EscapeXml(value, XmlEscapeMode::Attribute) + "\"";
    XmlAttribute attribute;
    if (FindXmlAttribute(tag, nameEnd, name, attribute)) {
        quoted.insert(0, attribute.hasEqualSign ? "" : "=");
        return {attribute.valueStart, attribute.valueEnd - attribute.valueStart, std::move(quoted)};
    }
    std::size_t last = nameEnd;
    bool isCutOff = false;
    XmlAttributes attributes(tag, nameEnd);
    while (attributes.Next(attribute)) {
        last = attribute.valueEnd;
        isCutOff = attribute.hasEqualSign && attribute.valueStart == attribute.valueEnd;
    }
    // A last attribute that ends in its "=" would take the new attribute as its value.
    std::string text = isCutOff ? "\"\" " : " ";
    return {last, 0, text.append(name).append("=").append(quoted)};
}

}  // namespace

struct XmlDocument::Place {
    std::uint32_t parent = 0;
    std::uint32_t previous = 0;   // sibling before the new element, 0 for none
    std::size_t offset = 0;       // of the new text
    bool opensParent = false;     // the parent is an empty element; the offset is that of its "/"
    bool isFirstContent = false;  // the parent has both tags and nothing between them
};

std::size_t XmlDocument::SkipWhiteSpace(std::size_t offset) const {
    std::size_t at = offset;
    while (at < m_text.size() && IsXmlWhiteSpace(m_text[at])) {
        ++at;
    }
    return at < m_text.size() && m_text[at] == '<' ? at : offset;
}

// Replaces a part of the text within `enclosing` and moves all later offsets. Returns false if the text would become
// too long.
bool XmlDocument::Change(std::uint32_t enclosing, std::size_t offset, std::size_t removed, std::string_view text) {
    const std::size_t needed = m_text.size() - removed + text.size();
    if (needed > MaxTextSize) {
        return false;
    }
    if (needed > m_text.capacity()) {
        m_text.reserve(needed + needed / 2 + SpliceReserve);
    }
    m_attributesOf = 0;
    m_text.replace(offset, removed, text);
    if (text.size() != removed) {
        const std::int64_t change = static_cast<std::int64_t>(text.size()) - static_cast<std::int64_t>(removed);
        m_index.Shift(static_cast<std::uint32_t>(offset), change);
        m_index.Lengthen(enclosing, change);
    }
    return true;
}

bool XmlDocument::SetAttribute(const char* name, const char* value) {
    if (m_main == 0 || name == nullptr || !IsAttributeName(name)) {
        return false;
    }
    const AttributeChange change =
        ChangeOfAttribute(StartTag(m_main), 1 + NameAt(m_main).size(), name, value == nullptr ? "" : value);
    if (!Change(m_main, m_index.At(m_main).start + change.start, change.removed, change.text)) {
        return false;
    }
    const std::size_t startTag = m_index.StartTagLength(m_main) - change.removed + change.text.size();
    m_index.SetTagLengths(m_main, static_cast<std::uint32_t>(startTag), m_index.EndTagLength(m_main));
    return true;
}

bool XmlDocument::FindPlace(std::uint32_t flags, Place& place) const {
    std::uint32_t reference = m_main;
    place.parent = m_parent;
    if ((flags & ChildFlag) != 0) {
        if (m_main == 0) {
            return false;
        }
        place.parent = m_main;
        reference = m_child;
    }
    const XmlRecord& parent = m_index.At(place.parent);
    // An element without an end tag has no content to add an element to.
    if (place.parent != 0 && (parent.flags & XmlIndex::NoEndTagFlag) != 0) {
        return false;
    }
    if ((flags & FirstPlaceFlag) != 0 && parent.firstChild != 0) {
        place.offset = m_index.At(parent.firstChild).start;
        return true;
    }
    if (reference != 0) {
        const bool isBefore = (flags & BeforeFlag) != 0;
        place.previous = isBefore ? m_index.Previous(reference) : reference;
        place.offset = isBefore ? m_index.At(reference).start : SkipWhiteSpace(m_index.End(reference));
        return true;
    }
    place.previous = m_index.LastChild(place.parent);
    place.offset = m_text.size();
    if (place.parent == 0) {
        return true;
    }
    const std::uint32_t endTag = m_index.EndTagLength(place.parent);
    place.opensParent = endTag == 0;
    place.isFirstContent = m_index.StartTagLength(place.parent) + endTag == parent.length;
    place.offset = m_index.End(place.parent) - (place.opensParent ? std::size_t{2} : endTag);
    return true;
}

bool XmlDocument::AddElement(const char* name, const char* data, std::uint32_t flags) {
    const std::string_view content = data == nullptr ? std::string_view() : std::string_view(data);
    if (name == nullptr || !IsElementName(name) || ((flags & NoEndTagFlag) != 0 && !content.empty())) {
        return false;
    }
    if (!m_index.Exists()) {
        Parse();
    }
    Place place;
    if (!FindPlace(flags, place)) {
        return false;
    }
    const ElementText element = MakeElement(name, content, flags);
    const std::string_view lineFeed = (flags & NoLineFeedFlag) != 0 ? "" : "\n";
    std::string lead(place.opensParent || place.isFirstContent ? lineFeed : "");
    std::string end(lineFeed);
    if (place.opensParent) {
        // The old ">" closes the new end tag. A "/" before it must not end up before the new ">".
        lead.insert(0, m_text[place.offset - 1] == '/' ? " >" : ">");
        end.append(EndTagStart).append(NameAt(place.parent));
    }
    const std::size_t removed = place.opensParent ? 1 : 0;
    if (!Change(place.parent, place.offset, removed, lead + element.text + end)) {
        return false;
    }
    if (place.opensParent) {
        const std::size_t startTag = place.offset + lead.size() - lineFeed.size() - m_index.At(place.parent).start;
        const std::size_t endTag = end.size() - lineFeed.size() + 1;
        m_index.SetTagLengths(place.parent, static_cast<std::uint32_t>(startTag), static_cast<std::uint32_t>(endTag));
    }
    const std::uint32_t added = m_index.Take(static_cast<std::uint32_t>(place.offset + lead.size()),
                                             static_cast<std::uint32_t>(element.text.size()));
    m_index.SetTagLengths(added, static_cast<std::uint32_t>(element.startTag),
                          static_cast<std::uint32_t>(element.endTag));
    m_index.LinkAfter(place.parent, place.previous, added);
    if ((flags & NoEndTagFlag) != 0) {
        m_index.At(added).flags |= XmlIndex::NoEndTagFlag;
        m_index.MarkIllFormed(place.parent);
        m_index.At(0).flags |= XmlIndex::IllFormedFlag;
    }
    SetPosition(place.parent, added, 0);
    return true;
}

bool XmlDocument::RemoveElement() {
    if (m_main == 0) {
        return false;
    }
    const std::size_t start = m_index.At(m_main).start;
    const std::size_t end = SkipWhiteSpace(m_index.End(m_main));
    const std::uint32_t previous = m_index.Previous(m_main);
    m_index.Remove(m_main);
    Change(m_parent, start, end - start, {});
    SetPosition(m_parent, previous, 0);
    return true;
}
