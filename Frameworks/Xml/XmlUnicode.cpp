#include "Frameworks/Xml/XmlUnicode.h"

#include <bit>
#include <cstring>
#include <utility>

namespace {

constexpr std::uint32_t LastCode = 0x10FFFF;
constexpr std::uint32_t FirstHighSurrogate = 0xD800;
constexpr std::uint32_t FirstLowSurrogate = 0xDC00;
constexpr std::uint32_t LastSurrogate = 0xDFFF;
constexpr std::uint32_t FirstBeyondUnit = 0x10000;
constexpr std::uint32_t HalfMask = 0x3FF;
constexpr unsigned HalfBits = 10;

char Byte(std::uint32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); }

// The length of the sequence that the lead byte begins; 0 for any other byte.
std::size_t SequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if ((lead & 0xE0) == 0xC0) {
        return 2;
    }
    if ((lead & 0xF0) == 0xE0) {
        return 3;
    }
    return (lead & 0xF8) == 0xF0 ? 4 : 0;
}

std::uint16_t UnitAt(std::string_view units, std::size_t offset) {
    std::uint16_t unit = 0;
    std::memcpy(&unit, units.data() + offset, sizeof unit);
    return unit;
}

void AppendUnit(std::string& units, std::uint32_t code) {
    const auto unit = static_cast<std::uint16_t>(code);
    char bytes[sizeof unit];
    std::memcpy(bytes, &unit, sizeof unit);
    units.append(bytes, sizeof unit);
}

}  // namespace

bool IsUnicodeCharacter(std::uint32_t code) {
    return code != 0 && code <= LastCode && (code < FirstHighSurrogate || code > LastSurrogate);
}

void AppendUtf8(std::string& text, std::uint32_t code) {
    if (code < 0x80) {
        text += Byte(code);
        return;
    }
    if (code < 0x800) {
        text += Byte(0xC0 | code >> 6);
    } else {
        if (code < FirstBeyondUnit) {
            text += Byte(0xE0 | code >> 12);
        } else {
            text += Byte(0xF0 | code >> 18);
            text += Byte(0x80 | (code >> 12 & 0x3F));
        }
        text += Byte(0x80 | (code >> 6 & 0x3F));
    }
    text += Byte(0x80 | (code & 0x3F));
}

bool ReadUtf8(std::string_view text, std::size_t& offset, std::uint32_t& code) {
    const auto lead = static_cast<unsigned char>(text[offset]);
    const std::size_t length = SequenceLength(lead);
    const std::size_t start = offset++;
    if (length == 0 || length > text.size() - start) {
        return false;
    }
    code = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t at = start + 1; at < start + length; ++at) {
        const auto next = static_cast<unsigned char>(text[at]);
        if ((next & 0xC0) != 0x80) {
            return false;
        }
        code = code << 6 | (next & 0x3FU);
    }
    offset = start + length;
    return true;
}

bool IsUtf8(std::string_view text, bool& hasNonAscii) {
    bool isValid = true;
    for (std::size_t offset = 0; offset < text.size();) {
        std::uint32_t code = 0;
        hasNonAscii = hasNonAscii || static_cast<unsigned char>(text[offset]) >= 0x80;
        isValid = ReadUtf8(text, offset, code) && isValid;
    }
    return isValid;
}

std::size_t Utf16ToUtf8(std::string_view units, std::string& text) {
    for (std::size_t at = 0; at + 1 < units.size(); at += 2) {
        std::uint32_t code = UnitAt(units, at);
        if (code >= FirstHighSurrogate && code < FirstLowSurrogate) {
            at += 2;
            if (at + 1 >= units.size()) {
                text += '?';
                return 1;
            }
            code = ((code & HalfMask) << HalfBits) + (UnitAt(units, at) & HalfMask) + FirstBeyondUnit;
        }
        AppendUtf8(text, code);
    }
    return 0;
}

std::size_t Utf8ToUtf16(std::string_view text, std::string& units) {
    std::size_t lost = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        std::uint32_t code = 0;
        if (!ReadUtf8(text, offset, code) || code > LastCode) {
            AppendUnit(units, '?');
            ++lost;
        } else if (code < FirstBeyondUnit) {
            AppendUnit(units, code);
        } else {
            AppendUnit(units, FirstHighSurrogate | (code - FirstBeyondUnit) >> HalfBits);
            AppendUnit(units, FirstLowSurrogate | (code & HalfMask));
        }
    }
    return lost;
}

void SwapUtf16(std::string& units) {
    for (std::size_t at = 0; at + 1 < units.size(); at += 2) {
        std::swap(units[at], units[at + 1]);
    }
}

const char* NativeUtf16() { return std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE"; }
