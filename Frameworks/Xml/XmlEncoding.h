// Character encodings of document files: conversion by iconv, and the search for the declared encoding. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The encoding of a document in memory.
inline constexpr const char* Utf8 = "UTF-8";

// In both operations one of the two encodings is UTF-8; an empty name means the encoding of the locale.
bool CanConvertEncoding(const std::string& to, const std::string& from);

// A converted text.
struct XmlConversion {
    std::string text;
    std::size_t lost = 0;  // characters that became "?"
    bool isDone = false;   // false if there is no such conversion, or the result would be over `limit` bytes
    bool isTooLong = false;
};

// Reserves 1/margin more bytes than measured; none for 0.
XmlConversion ConvertEncoding(const std::string& to, const std::string& from, std::string_view text,
                              std::uint64_t limit, std::size_t margin = 0);

// The encoding that the start of a document names, in its XML declaration or the meta element of an HTML form; empty if
// there is none.
std::string DeclaredEncoding(std::string_view text);
