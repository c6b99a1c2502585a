#include "Frameworks/Xml/XmlEncoding.h"

#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <memory>
#include <type_traits>

#include "Frameworks/Xml/XmlAttributes.h"
#include "Frameworks/Xml/XmlScanner.h"
#include "Frameworks/Xml/XmlUnicode.h"

namespace {

constexpr std::size_t ScratchSize = 2048;
constexpr std::size_t MaxEncodingName = 99;

using Length = unsigned long long;  // of a result, which may not fit the memory

struct CloseConverter {
    void operator()(void* converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseConverter>;

bool IsNameByte(unsigned char byte) {
    return std::isalnum(byte) != 0 ||
           std::string_view("-_.:+()").find(static_cast<char>(byte)) != std::string_view::npos;
}

// The name comes from a file. Only a plausible encoding name reaches the library, whose own syntax for options and
// modules begins with a slash.
bool ConverterName(const std::string& encoding, std::string& name) {
    if (encoding.size() > MaxEncodingName || !std::all_of(encoding.begin(), encoding.end(), IsNameByte)) {
        return false;
    }
    name = encoding;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::toupper(byte)); });
    if (name == "UTF-16") {
        name = "UTF-16BE";
    }
    return true;
}

Converter OpenConverter(const std::string& to, const std::string& from) {
    std::string toName;
    std::string fromName;
    if (!ConverterName(to, toName) || !ConverterName(from, fromName)) {
        return nullptr;
    }
    iconv_t converter = iconv_open(toName.c_str(), fromName.c_str());
    // On failure the library returns a pointer of all ones.
    return Converter(reinterpret_cast<std::intptr_t>(converter) == -1 ? nullptr : converter);
}

std::size_t UnitOf(const std::string& encoding) {
    std::string name;
    return ConverterName(encoding, name) && name.starts_with("UTF-16") ? 2 : 1;
}

// One pass over the text. Without a target it only measures.
class Pass {
public:
    Pass(iconv_t converter, bool isTargetUtf8, std::string_view text, std::size_t unit, std::string* target)
        : m_converter(converter),
          m_isTargetUtf8(isTargetUtf8),
          m_source(const_cast<char*>(text.data())),
          m_left(text.size()),
          m_unit(unit),
          m_target(target) {
        iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
        StartBuffer();
    }

    void Run() {
        while (m_left > 0 && Convert(&m_source, &m_left)) {
            // Convert stopped at an invalid sequence.
            const std::size_t skipped = std::min(m_unit, m_left);
            m_source += skipped;
            m_left -= skipped;
            ++m_lost;
            WriteMark();
        }
        Convert(nullptr, nullptr);  // returns a target with shift states to its initial state
    }

    Length Size() const { return m_size + Used(); }
    std::size_t Lost() const { return m_lost; }

private:
    std::size_t Used() const { return static_cast<std::size_t>(m_out - Buffer()); }
    char* Buffer() { return m_target != nullptr ? m_target->data() : m_scratch; }
    const char* Buffer() const { return m_target != nullptr ? m_target->data() : m_scratch; }

    void StartBuffer() {
        m_out = Buffer();
        m_room = m_target != nullptr ? m_target->size() : ScratchSize;
    }

    // A target other than UTF-8 is converted from UTF-8, so the mark is converted too.
    void WriteMark() {
        char mark = '?';
        char* source = &mark;
        std::size_t left = 1;
        if (!m_isTargetUtf8) {
            Convert(&source, &left);
        } else if (m_room > 0 || m_target == nullptr) {
            if (m_room == 0) {
                m_size += Used();
                StartBuffer();
            }
            *m_out++ = mark;
            --m_room;
        }
    }

    // Returns true if it stopped at an invalid sequence; false at the end, at an incomplete sequence and at a full
    // target.
    bool Convert(char** source, std::size_t* left) {
        for (;;) {
            if (iconv(m_converter, source, left, &m_out, &m_room) != static_cast<std::size_t>(-1)) {
                return false;
            }
            if (errno != E2BIG || m_target != nullptr) {
                return errno == EILSEQ;
            }
            m_size += Used();
            StartBuffer();
        }
    }

    iconv_t m_converter;
    bool m_isTargetUtf8;
    char* m_source;
    std::size_t m_left;
    std::size_t m_unit;
    std::string* m_target;
    char* m_out = nullptr;
    std::size_t m_room = 0;
    Length m_size = 0;
    std::size_t m_lost = 0;
    char m_scratch[ScratchSize];
};

// For a C library without the UTF-16 module.
bool ConvertByHand(const std::string& to, const std::string& from, std::string_view text, XmlConversion& conversion) {
    if (from == NativeUtf16() && to == Utf8) {
        conversion.lost = Utf16ToUtf8(text, conversion.text);
        return true;
    }
    if (from != Utf8 || UnitOf(to) == 1) {
        return false;
    }
    conversion.lost = Utf8ToUtf16(text, conversion.text);
    if (to != NativeUtf16()) {
        SwapUtf16(conversion.text);
    }
    return true;
}

}  // namespace

bool CanConvertEncoding(const std::string& to, const std::string& from) { return OpenConverter(to, from) != nullptr; }

XmlConversion ConvertEncoding(const std::string& to, const std::string& from, std::string_view text,
                              std::uint64_t limit, std::size_t margin) {
    XmlConversion conversion;
    const Converter converter = OpenConverter(to, from);
    if (converter == nullptr) {
        conversion.isDone = ConvertByHand(to, from, text, conversion);
        return conversion;
    }
    const std::size_t unit = UnitOf(from);
    Pass measure(converter.get(), to == Utf8, text, unit, nullptr);
    measure.Run();
    const Length size = measure.Size();
    if (size > limit || size > conversion.text.max_size() / 2) {
        conversion.isTooLong = true;
        return conversion;
    }
    conversion.text.reserve(static_cast<std::size_t>(size + (margin == 0 ? 0 : size / margin)));
    conversion.text.resize(static_cast<std::size_t>(size));
    Pass convert(converter.get(), to == Utf8, text, unit, &conversion.text);
    convert.Run();
    conversion.text.resize(static_cast<std::size_t>(convert.Size()));
    conversion.lost = convert.Lost();
    conversion.isDone = true;
    return conversion;
}

namespace {

// The name of a start tag or of a processing instruction follows its first bytes.
std::string_view AttributeOf(std::string_view tag, const XmlToken& token, std::string_view name) {
    XmlAttribute attribute;
    const std::size_t nameEnd = 1 + (tag[1] == '?' ? 1 : 0) + token.name.size();
    return FindXmlAttribute(tag, nameEnd, name, attribute) ? attribute.value : std::string_view();
}

std::string_view CharacterSet(std::string_view content) {
    constexpr std::string_view Key = "charset=";
    const std::size_t at = content.find(Key);
    if (at == std::string_view::npos) {
        return {};
    }
    content.remove_prefix(at + Key.size());
    return content.substr(0, content.find_first_of("; \t\r\n"));
}

std::string_view EncodingIn(std::string_view tag, const XmlToken& token) {
    if (token.kind == XmlTokenKind::ProcessingInstruction && token.name == "xml") {
        return AttributeOf(tag, token, "encoding");
    }
    const bool isMeta = token.kind == XmlTokenKind::StartTag && token.name == "meta";
    if (isMeta && AttributeOf(tag, token, "http-equiv") == "Content-Type") {
        return CharacterSet(AttributeOf(tag, token, "content"));
    }
    return {};
}

bool EndsSearch(const XmlToken& token) {
    if (token.kind == XmlTokenKind::StartTag) {
        return token.name != "html" && token.name != "head" && token.name != "meta";
    }
    return token.kind == XmlTokenKind::EndOfText || (token.kind == XmlTokenKind::EndTag && token.name == "head");
}

}  // namespace

std::string DeclaredEncoding(std::string_view text) {
    XmlScanner scanner(text);
    for (;;) {
        const XmlToken& token = scanner.Next();
        if (EndsSearch(token)) {
            return {};
        }
        const std::string_view encoding = EncodingIn(text.substr(token.start, token.end - token.start), token);
        if (!encoding.empty()) {
            return std::string(encoding);
        }
    }
}
