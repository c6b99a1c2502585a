// The simplest implementation of a document: a tree of strings, written out again each time. The random test compares
// XmlDocument with it.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <vector>

struct ModelElement;

// A run of text, comments and the like, or an element.
struct ModelPiece {
    std::string text;
    std::unique_ptr<ModelElement> element;
};

struct ModelAttribute {
    std::string name;
    std::string value;     // decoded
    std::string before;    // blanks, name and "="
    std::string rawValue;  // with its quotes
};

struct ModelElement {
    std::string name;
    std::vector<ModelAttribute> attributes;
    std::string tail;  // between the last attribute and the end of the tag
    bool isEmpty = true;
    std::list<ModelPiece> content;
    std::string endTagTail;  // between the name and the ">" of the end tag
    ModelElement* parent = nullptr;
};

class XmlModel {
public:
    // The virtual element above the root.
    XmlModel() : m_parent(&m_top) { m_top.isEmpty = false; }

    ModelElement& Top() { return m_top; }
    std::string Text() const;

    bool Find(const std::string& name);  // empty: any
    bool Into();
    bool OutOf();
    void ResetPosition();
    void ResetMainPosition();

    const ModelElement* Main() const { return m_main; }
    std::string Attribute(const std::string& name) const;
    bool SetAttribute(const std::string& name, const std::string& value);
    bool Add(const std::string& name, const std::string& data, unsigned flags);
    bool Remove();

private:
    using Place = std::list<ModelPiece>::iterator;

    static Place PlaceOf(ModelElement& element);
    static Place SkipWhiteSpace(ModelElement& parent, Place place);

    ModelElement m_top;
    ModelElement* m_parent;
    ModelElement* m_main = nullptr;
    ModelElement* m_child = nullptr;
};
