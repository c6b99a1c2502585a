// Reads and writes the file of a document in its encoding. Any thread, one file at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Kept from a load to the next save, so that a file keeps its form.
struct XmlFileForm {
    static constexpr std::uint32_t Utf16LeFlag = 1U << 0;
    static constexpr std::uint32_t Utf8MarkFlag = 1U << 2;
    static constexpr std::uint32_t Utf16BeFlag = 1U << 7;

    std::uint32_t flags = 0;  // the byte order mark of the file
    std::string encoding;     // empty: the encoding of the locale, or unknown
};

// Reads the file as UTF-8 text of at most `limit` bytes. Returns false and an empty text if it cannot be read or is too
// long. Adds its reports to `result`.
bool ReadXmlFile(const char* path, std::uint64_t limit, std::string& text, XmlFileForm& form, std::string& result);

// Rewrites the file in place, in its form. Returns false with a report if it cannot be written.
bool WriteXmlFile(const char* path, std::string_view text, const XmlFileForm& form, std::string& result);
