// A document read from a file and kept, by us and by the peers. Each Load is false for a file that is no document.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <libxml/parser.h>
#include <tinyxml2.h>
#include <pugixml.hpp>
#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_utils.hpp>

#include "Frameworks/Xml/XmlDocument.h"

struct OurReader {
    bool Load(const std::string& path) { return document.Load(path.c_str()); }

    XmlDocument document;
};

struct PugixmlReader {
    bool Load(const std::string& path) { return document.load_file(path.c_str()); }

    pugi::xml_document document;
};

struct RapidxmlReader {
    bool Load(const std::string& path) {
        text = std::make_unique<rapidxml::file<>>(path.c_str());
        document.parse<0>(text->data());
        return document.first_node() != nullptr;
    }

    std::unique_ptr<rapidxml::file<>> text;
    rapidxml::xml_document<> document;
};

struct Tinyxml2Reader {
    bool Load(const std::string& path) { return document.LoadFile(path.c_str()) == tinyxml2::XML_SUCCESS; }

    tinyxml2::XMLDocument document;
};

struct Libxml2Reader {
    bool Load(const std::string& path) {
        document.reset(xmlReadFile(path.c_str(), nullptr, XML_PARSE_HUGE));
        return document != nullptr;
    }

    std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document{nullptr, xmlFreeDoc};
};

// The text and an index of our form, which expat's calls fill.
class ExpatReader {
public:
    bool Load(const std::string& path);

private:
    static void OnStart(void* reader, const char* name, const char** attributes);
    static void OnEnd(void* reader, const char* name);

    bool Read(const std::string& path);
    bool ParsePieces();
    std::uint32_t Offset() const;

    std::string m_text;
    std::vector<XmlRecord> m_records;
    std::vector<std::uint32_t> m_open;
    void* m_parser = nullptr;  // while Load runs
};
