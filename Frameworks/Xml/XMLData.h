// The root of every class that talks to an XML document: settings read themselves from one, records write themselves
// into one. The document is borrowed and may be null. One thread at a time.
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
    // The document set before stays alive: it belongs to someone else.
    void SetDocument(XmlDocument* document) { m_document = document; }

private:
    XmlDocument* m_document = nullptr;
};
