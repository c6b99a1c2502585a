// A document as one text in its exact characters, with an index of its elements beside it and a cursor of parent, main
// (the current element) and child. Reading picks text out of the document; changing splices it, so that everything
// untouched survives a load and save byte for byte. A bad document is indexed as far as it goes and never throws: ask
// IsWellFormed. No lock: one thread at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Frameworks/Xml/XmlAttributes.h"
#include "Frameworks/Xml/XmlFile.h"
#include "Frameworks/Xml/XmlIndex.h"

class XmlDocument {
public:
    // Flags of AddElement.
    static constexpr std::uint32_t CDataFlag = 0x1;          // the data goes into a CDATA section
    static constexpr std::uint32_t NoLineFeedFlag = 0x2;     // no line feeds are added
    static constexpr std::uint32_t BlankFlag = 0x4;          // a blank stands before "/>"
    static constexpr std::uint32_t NoEndTagFlag = 0x10;      // no end tag is written; data is refused
    static constexpr std::uint32_t FirstPlaceFlag = 0x1000;  // first among the siblings
    static constexpr std::uint32_t BeforeFlag = 0x2000;      // before, not after, the main element
    static constexpr std::uint32_t ChildFlag = 0x4000;       // a child of the main element, not a sibling

    XmlDocument() = default;
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;
    ~XmlDocument() = default;

    // Replaces the text (null counts as empty) and indexes it. Returns true if it is well formed. A later save writes
    // it in the encoding and with the byte order mark of the last load.
    bool SetDocumentText(const char* text);
    const std::string& GetDocumentText() const { return m_text; }

    // False if the file cannot be read, which leaves an empty document; otherwise whether it is well formed.
    bool Load(const char* path);
    // Rewrites the file in place, in the encoding and with the byte order mark of the load. The cursor stays.
    bool Save(const char* path);

    // A text with one root and no fault in it. What is at fault is indexed all the same.
    bool IsWellFormed() const;
    // What the last load, save or parse had to say: one element a report; and the same as text for display.
    const std::string& GetResult() const { return m_result; }
    std::string GetResultText() const;

    void ResetPosition();      // above the root
    void ResetMainPosition();  // before the first child of the parent
    // The next sibling of that name behind the main element; no name finds the next sibling whatever its name. On false
    // the cursor has not moved.
    bool FindElement(const char* name = nullptr);
    bool IntoElement();
    bool OutOfElement();

    // Of the current element; empty if there is none.
    std::string GetTagName() const;
    // The value with its entities decoded; empty if there is no current element or no such attribute.
    std::string GetAttribute(const char* name) const;
    // From the "<" to the ">", for a reader that walks the attributes itself; holds until the next change.
    std::string_view GetStartTag() const;
    // All text directly in the current element, entities decoded and CDATA sections as they are.
    std::string GetData() const;

    // False without a current element, or for a name that would break the tag. A new attribute goes behind the last.
    bool SetAttribute(const char* name, const char* value);
    // Adds an element behind the main element, or at the end of the parent's content; it becomes the main position.
    // Null or empty data makes an empty element. False leaves the document and cursor untouched.
    bool AddElement(const char* name, const char* data = nullptr, std::uint32_t flags = 0);
    // Removes the current element with its text; the previous sibling, if any, becomes the main position.
    bool RemoveElement();

    // The positions of the elements, for a reader that walks them itself; holds until the next change.
    const XmlIndex& GetIndex() const { return m_index; }

private:
    // Every offset has to fit the words of the index.
    static constexpr std::uint64_t LongestText = 0xFFFFFFFF;

    struct Place;

    void SetPosition(std::uint32_t parent, std::uint32_t main, std::uint32_t child);
    bool Parse();

    std::string_view NameAt(std::uint32_t index) const;
    std::string_view StartTag(std::uint32_t index) const;

    bool FindPlace(std::uint32_t flags, Place& place) const;
    bool Change(std::uint32_t enclosing, std::size_t offset, std::size_t removed, std::string_view text);
    std::size_t BehindWhiteSpace(std::size_t offset) const;

    std::string m_text;
    std::string m_result;
    std::uint32_t m_parent = 0;
    std::uint32_t m_main = 0;   // 0: before the first child of the parent
    std::uint32_t m_child = 0;  // remembered child of the main element
    XmlFileForm m_form;         // of the last load
    XmlIndex m_index;
    // The element whose attributes were last asked for, 0 if the text has changed since, and those attributes.
    mutable std::uint32_t m_attributesOf = 0;
    mutable XmlAttributeFinder m_attributes;
};
