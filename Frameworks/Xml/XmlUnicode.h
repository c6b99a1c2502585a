// UTF-8 and UTF-16 by hand. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// True for what can stand in a document: not 0, no surrogate, within the code space.
bool IsUnicodeCharacter(std::uint32_t code);
void AppendUtf8(std::string& text, std::uint32_t code);

// Reads the sequence at `offset` by its leading bits and moves behind it. False if it is cut off or cannot begin one;
// then `offset` has moved by one byte.
bool ReadUtf8(std::string_view text, std::size_t& offset, std::uint32_t& code);
bool IsUtf8(std::string_view text, bool& hasNonAscii);

// UTF-16 in the byte order of the machine, an odd last byte left out. A surrogate in the range D800 to DBFF takes the
// next unit with it; one without a next unit gives "?", and so does a faulty UTF-8 sequence. The result is the number
// of
// "?" given.
std::size_t Utf16ToUtf8(std::string_view units, std::string& text);
std::size_t Utf8ToUtf16(std::string_view text, std::string& units);
void SwapUtf16(std::string& units);

// The name of UTF-16 in the byte order of the machine.
const char* NativeUtf16();
