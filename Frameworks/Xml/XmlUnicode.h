// UTF-8 and UTF-16 without iconv. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// True for a code that a document may contain: not 0, no surrogate, within the code space.
bool IsUnicodeCharacter(std::uint32_t code);
void AppendUtf8(std::string& text, std::uint32_t code);

// Reads the sequence at `offset` by its leading bits and moves `offset` past it. For an incomplete or invalid sequence
// it returns false and moves by one byte.
bool ReadUtf8(std::string_view text, std::size_t& offset, std::uint32_t& code);
bool IsUtf8(std::string_view text, bool& hasNonAscii);

// UTF-16 in the byte order of the machine, without an odd last byte. A surrogate from D800 to DBFF combines with the
// next unit; without a next unit it gives "?", and so does an invalid UTF-8 sequence. The result is the number of "?"
// written.
std::size_t Utf16ToUtf8(std::string_view units, std::string& text);
std::size_t Utf8ToUtf16(std::string_view text, std::string& units);
void SwapUtf16(std::string& units);

// The name of UTF-16 in the byte order of the machine.
const char* NativeUtf16();
