// Special characters of a document: escaped on writing, decoded on reading. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The place of a text.
enum class XmlEscapeMode { Text, Attribute };

// Attribute mode escapes both quotes too.
std::string EscapeXml(std::string_view text, XmlEscapeMode mode);

// The data as a CDATA section; a terminator in the data splits the section.
std::string XmlCDataSection(std::string_view data);

// Replaces entities and character numbers. Any other "&" stays.
std::string DecodeXml(std::string_view text);

// The code of a named entity, 0 for an unknown name. The name is in lower case.
std::uint32_t XmlEntityCode(std::string_view name);
