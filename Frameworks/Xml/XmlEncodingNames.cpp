#include "Frameworks/Xml/XmlEncodingNames.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "Frameworks/Xml/XmlEncodingTable.h"

namespace {

constexpr std::size_t NameCount = std::size(XmlEncodingRows);
static_assert(NameCount == 365);
constexpr std::size_t NameBuckets = 155;
constexpr std::size_t NameTextSize = XmlTableTextSize(XmlEncodingRows, NameCount, 2 + 5);
constexpr XmlPackedTable<NameBuckets, 2, 5, NameTextSize> Names(XmlEncodingRows, NameCount);

constexpr std::size_t MaxNameLength = 99;
constexpr std::uint32_t Utf32CodePage = 65005;

char LowerByte(unsigned char byte) { return static_cast<char>(std::tolower(byte)); }

}  // namespace

std::uint32_t EncodingCodePage(std::string_view name) {
    char lowered[MaxNameLength];
    if (name.size() > MaxNameLength) {
        return 0;
    }
    std::transform(name.begin(), name.end(), lowered, LowerByte);
    const std::string_view key(lowered, name.size());
    return key == "utf-32" ? Utf32CodePage : Names.Find(key);
}
