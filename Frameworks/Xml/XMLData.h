// The base of every class that reads from or writes into an XML document. The document is borrowed and may be null. One
// thread at a time.
#pragma once

class XmlDocument;

class XMLData {
public:
    XMLData() = default;
    XMLData(const XMLData&) = default;
    XMLData(XMLData&&) = default;
    XMLData& operator=(const XMLData&) = default;
    XMLData& operator=(XMLData&&) = default;
    virtual ~XMLData() = default;

    XmlDocument* GetDocument() const { return m_document; }
    // Does not free the previous document.
    void SetDocument(XmlDocument* document) { m_document = document; }

private:
    XmlDocument* m_document = nullptr;
};
