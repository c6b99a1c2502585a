// The meaning of a byte to the scanner of tags and attributes. Any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

enum XmlByteClass : std::uint8_t {
    XML_WHITE_SPACE = 1,  // tab, line feed, carriage return, blank
    XML_NAME_START = 2,
    XML_NAME_END = 4,             // white space, "/" and ">"
    XML_TAG_STOP = 8,             // ">" and quotes
    XML_ATTRIBUTE_NAME_STOP = 16  // white space, "=" and quotes
};

// The classes of each byte.
constexpr std::array<std::uint8_t, 256> MakeXmlByteClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (const char byte : {'\t', '\n', '\r', ' '}) {
        classes[static_cast<unsigned char>(byte)] = XML_WHITE_SPACE | XML_NAME_END | XML_ATTRIBUTE_NAME_STOP;
    }
    for (std::size_t byte = 'A'; byte <= 'Z'; ++byte) {
        classes[byte] = XML_NAME_START;
    }
    // From the lower-case letters up, so that every byte of a character beyond ASCII is included.
    for (std::size_t byte = 'a'; byte < classes.size(); ++byte) {
        classes[byte] = XML_NAME_START;
    }
    classes['_'] = XML_NAME_START;
    classes[':'] = XML_NAME_START;
    classes['/'] = XML_NAME_END;
    classes['>'] = XML_NAME_END | XML_TAG_STOP;
    classes['"'] = XML_TAG_STOP | XML_ATTRIBUTE_NAME_STOP;
    classes['\''] = XML_TAG_STOP | XML_ATTRIBUTE_NAME_STOP;
    classes['='] = XML_ATTRIBUTE_NAME_STOP;
    return classes;
}

// Computed at compile time.
inline constexpr std::array<std::uint8_t, 256> XmlByteClasses = MakeXmlByteClasses();

// Whether the byte is in that class.
inline bool IsXmlByte(char byte, XmlByteClass byteClass) {
    return (XmlByteClasses[static_cast<unsigned char>(byte)] & byteClass) != 0;
}

// By single bytes, for any encoding; each byte from 0x61 up may start a name.
inline bool IsXmlWhiteSpace(char byte) { return IsXmlByte(byte, XML_WHITE_SPACE); }
inline bool IsXmlNameStart(char byte) { return IsXmlByte(byte, XML_NAME_START); }
inline bool EndsXmlName(char byte) { return IsXmlByte(byte, XML_NAME_END); }
inline bool StopsXmlTag(char byte) { return IsXmlByte(byte, XML_TAG_STOP); }
inline bool StopsXmlAttributeName(char byte) { return IsXmlByte(byte, XML_ATTRIBUTE_NAME_STOP); }

// The next such byte, or `end`.
inline const char* FindXmlByte(const char* from, const char* end, char byte) {
    const void* found = std::memchr(from, byte, static_cast<std::size_t>(end - from));
    return found == nullptr ? end : static_cast<const char*>(found);
}
