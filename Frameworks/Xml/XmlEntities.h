// How special characters stand in a document: escaped on writing, decoded on reading. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Where a text is to stand.
enum class XmlEscapeMode { TEXT_MODE, ATTRIBUTE_MODE };

// Attribute mode escapes both quotes too.
std::string EscapeXml(std::string_view text, XmlEscapeMode mode);

// The data as a CDATA section; a terminator in the data splits the section.
std::string XmlCDataSection(std::string_view data);

// Replaces entities and character numbers. An "&" that begins none stays as it is.
std::string DecodeXml(std::string_view text);

// The code of a named entity, 0 if there is none of the name. The name is in small letters.
std::uint32_t XmlEntityCode(std::string_view name);
