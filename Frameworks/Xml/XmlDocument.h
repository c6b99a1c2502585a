// A document as one text in its exact characters, with an index of its elements and a cursor of parent, main (the
// current element) and child. Reading takes text from the document; a change replaces part of it, so everything else
// survives a load and save byte for byte. Nothing throws for a malformed document: it is indexed as far as possible,
// and IsWellFormed returns false. No lock: one thread at a time.
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
    static constexpr std::uint32_t BlankFlag = 0x4;          // a blank before "/>"
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

    // Returns whether the document is well formed. A file that cannot be read gives false and an empty document.
    bool Load(const char* path);
    // Rewrites the file in place, in the encoding and with the byte order mark of the last load. The cursor stays.
    bool Save(const char* path);

    // Whether the text has one root and no fault.
    bool IsWellFormed() const;
    // The reports of the last load, save or parse: one element each; and as text for display.
    const std::string& GetResult() const { return m_result; }
    std::string GetResultText() const;

    void ResetPosition();      // above the root
    void ResetMainPosition();  // before the first child of the parent
    // Moves to the next sibling of that name after the main element; without a name to the next sibling. If there is
    // none, returns false and the cursor stays.
    bool FindElement(const char* name = nullptr);
    bool IntoElement();
    bool OutOfElement();

    // Of the current element; empty if there is none.
    std::string GetTagName() const;
    // The value with its entities decoded; empty if there is no current element or no such attribute.
    std::string GetAttribute(const char* name) const;
    // From the "<" to the ">", for a reader that walks the attributes; valid until the next change.
    std::string_view GetStartTag() const;
    // All text directly in the current element, entities decoded and CDATA sections as they are.
    std::string GetData() const;

    // Returns false without a current element and for a name that would break the tag. A new attribute becomes the
    // last.
    bool SetAttribute(const char* name, const char* value);
    // Adds an element after the main element, or at the end of the parent's content; it becomes the main position.
    // Null or empty data makes an empty element. If refused, returns false; document and cursor are unchanged.
    bool AddElement(const char* name, const char* data = nullptr, std::uint32_t flags = 0);
    // Removes the current element with its text; the previous sibling, if any, becomes the main position.
    bool RemoveElement();

    // The positions of the elements; valid until the next change.
    const XmlIndex& GetIndex() const { return m_index; }

private:
    // Every offset must fit the words of the index.
    static constexpr std::uint64_t MaxTextSize = 0xFFFFFFFF;

    struct Place;

    void SetPosition(std::uint32_t parent, std::uint32_t main, std::uint32_t child);
    bool Parse();

    std::string_view NameAt(std::uint32_t index) const;
    std::string_view StartTag(std::uint32_t index) const;

    bool FindPlace(std::uint32_t flags, Place& place) const;
    bool Change(std::uint32_t enclosing, std::size_t offset, std::size_t removed, std::string_view text);
    std::size_t SkipWhiteSpace(std::size_t offset) const;

    std::string m_text;
    std::string m_result;
    std::uint32_t m_parent = 0;
    std::uint32_t m_main = 0;   // 0: before the first child of the parent
    std::uint32_t m_child = 0;  // remembered child of the main element
    XmlFileForm m_form;         // of the last load
    XmlIndex m_index;
    // The attributes of the element last asked for; 0 if the text has changed since.
    mutable std::uint32_t m_attributesOf = 0;
    mutable XmlAttributeFinder m_attributes;
};
