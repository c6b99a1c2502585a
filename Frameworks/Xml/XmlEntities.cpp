#include "Frameworks/Xml/XmlEntities.h"

#include <algorithm>
#include <charconv>

#include "Frameworks/Xml/XmlEntityTable.h"
#include "Frameworks/Xml/XmlUnicode.h"

namespace {

constexpr std::size_t EntityCount = std::size(XmlEntityRows);
static_assert(EntityCount == 253);
constexpr std::size_t EntityBuckets = 130;
constexpr std::size_t EntityTextSize = XmlTableTextSize(XmlEntityRows, EntityCount, 1 + 4);
constexpr XmlPackedTable<EntityBuckets, 1, 4, EntityTextSize> Entities(XmlEntityRows, EntityCount);

constexpr std::size_t EntityReach = 9;  // bytes after the "&", the ";" included
constexpr std::string_view CDataStart = "<![CDATA[";
constexpr std::string_view CDataEnd = "]]>";
constexpr std::string_view SplitCDataEnd = "]]]]><![CDATA[>";

char LowerLetter(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte; }

std::uint32_t NumberedCode(std::string_view number) {
    const bool isHexadecimal = number.starts_with('x');
    number.remove_prefix(isHexadecimal ? 1 : 0);
    std::uint32_t code = 0;
    const auto [end, error] =
        std::from_chars(number.data(), number.data() + number.size(), code, isHexadecimal ? 16 : 10);
    const bool isNumber = error == std::errc() && end == number.data() + number.size();
    return isNumber && IsUnicodeCharacter(code) ? code : 0;
}

std::uint32_t CodeOf(std::string_view entity) {
    char name[EntityReach];
    const std::size_t length = std::min(entity.size(), EntityReach);
    std::transform(entity.begin(), entity.begin() + static_cast<std::ptrdiff_t>(length), name, LowerLetter);
    const std::string_view lowered(name, length);
    return lowered.starts_with('#') ? NumberedCode(lowered.substr(1)) : XmlEntityCode(lowered);
}

const char* EscapeOf(char byte, XmlEscapeMode mode) {
    switch (byte) {
        case '<':
            return "&lt;";
        case '&':
            return "&amp;";
        case '>':
            return "&gt;";
        case '"':
            return mode == XmlEscapeMode::Attribute ? "&quot;" : nullptr;
        case '\'':
            return mode == XmlEscapeMode::Attribute ? "&apos;" : nullptr;
        default:
            return nullptr;
    }
}

}  // namespace

std::uint32_t XmlEntityCode(std::string_view name) { return Entities.Find(name); }

std::string EscapeXml(std::string_view text, XmlEscapeMode mode) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char byte : text) {
        if (const char* escape = EscapeOf(byte, mode); escape != nullptr) {
            escaped += escape;
        } else {
            escaped += byte;
        }
    }
    return escaped;
}

std::string XmlCDataSection(std::string_view data) {
    std::string section(CDataStart);
    for (std::size_t end = data.find(CDataEnd); end != std::string_view::npos; end = data.find(CDataEnd)) {
        section.append(data, 0, end).append(SplitCDataEnd);
        data.remove_prefix(end + CDataEnd.size());
    }
    return section.append(data).append(CDataEnd);
}

std::string DecodeXml(std::string_view text) {
    std::size_t at = text.find('&');
    if (at == std::string_view::npos) {
        return std::string(text);
    }
    std::string decoded;
    decoded.reserve(text.size());
    for (; at != std::string_view::npos; at = text.find('&')) {
        decoded.append(text, 0, at);
        const std::string_view reach = text.substr(at + 1, EntityReach);
        const std::size_t length = reach.find(';');
        const std::uint32_t code = length == std::string_view::npos ? 0 : CodeOf(reach.substr(0, length));
        if (code == 0) {
            decoded += '&';
            text.remove_prefix(at + 1);
        } else {
            AppendUtf8(decoded, code);
            text.remove_prefix(at + 1 + length + 1);
        }
    }
    return decoded.append(text);
}
