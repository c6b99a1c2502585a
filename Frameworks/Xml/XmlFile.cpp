#include "Frameworks/Xml/XmlFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "Frameworks/Xml/XmlEncoding.h"
#include "Frameworks/Xml/XmlReport.h"
#include "Frameworks/Xml/XmlUnicode.h"

namespace {

constexpr std::size_t SampleSize = 1024;
constexpr std::size_t PieceSize = 32768;
constexpr off64_t MaxReserve = 1 << 26;        // memory for a larger file is only taken as its bytes arrive
constexpr std::size_t EditMargin = 1024;       // room for the first change
constexpr std::size_t ConversionMargin = 100;  // one spare byte per 100, for the same purpose

struct ByteOrderMark {
    std::string_view bytes;
    const char* encoding;
    std::uint32_t flag;
};

constexpr ByteOrderMark ByteOrderMarks[] = {
    {"\xEF\xBB\xBF", "UTF-8", XmlFileForm::Utf8MarkFlag},
    {"\xFF\xFE", "UTF-16LE", XmlFileForm::Utf16LeFlag},
    {"\xFE\xFF", "UTF-16BE", XmlFileForm::Utf16BeFlag},
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File Open(const char* path, const char* mode) { return File(fopen64(path == nullptr ? "" : path, mode)); }

bool FileError(int error, std::string& result) {
    AddXmlReport(result, "file_error", {.msg = std::strerror(error)});
    return false;
}

bool IsUtf8Name(std::string encoding) {
    std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::toupper(byte)); });
    return encoding == Utf8 || encoding == "UTF8";
}

class FileReader {
public:
    FileReader(std::uint64_t limit, std::string& text, XmlFileForm& form, std::string& result)
        : m_limit(limit), m_text(text), m_form(form), m_result(result) {}

    bool Read(const char* path);

private:
    bool ReadBytes(std::FILE* file);
    std::size_t RecognizeForm(std::string_view sample);
    void Append(std::string_view piece);
    void RemoveNullUnits();
    bool ConvertUtf16();
    bool ConvertBytes();
    bool ConvertFrom(const std::string& encoding);
    void ReportRead(const std::string& encoding);
    bool IsUtf16() const { return (m_form.flags & (XmlFileForm::Utf16LeFlag | XmlFileForm::Utf16BeFlag)) != 0; }

    std::uint64_t m_limit;
    std::string& m_text;
    XmlFileForm& m_form;
    std::string& m_result;
    std::uint64_t m_bytesRead = 0;  // after the mark
    std::uint64_t m_nulls = 0;      // units
};

bool FileReader::Read(const char* path) {
    m_text.clear();
    m_form = XmlFileForm{};
    const File file = Open(path, "rb");
    if (file == nullptr) {
        return FileError(errno, m_result);
    }
    if (!ReadBytes(file.get()) || !(IsUtf16() ? ConvertUtf16() : ConvertBytes())) {
        const int error = errno;
        m_text.clear();
        return FileError(error, m_result);
    }
    return true;
}

bool FileReader::ReadBytes(std::FILE* file) {
    struct stat64 status {};
    if (fstat64(fileno(file), &status) != 0) {
        return false;
    }
    if (static_cast<std::uint64_t>(status.st_size) > m_limit) {
        errno = EFBIG;
        return false;
    }
    std::setvbuf(file, nullptr, _IONBF, 0);  // large pieces need no buffer
    char piece[PieceSize];
    std::size_t wanted = SampleSize;
    std::size_t count = std::fread(piece, 1, wanted, file);
    std::size_t skipped = RecognizeForm({piece, count});
    m_text.reserve(static_cast<std::size_t>(std::min(status.st_size, MaxReserve)) + EditMargin);
    while (count > 0) {
        m_bytesRead += count - skipped;
        if (m_bytesRead > m_limit) {
            errno = EFBIG;
            return false;
        }
        Append({piece + skipped, count - skipped});
        skipped = 0;
        const bool isEnd = count < wanted;
        wanted = PieceSize;
        count = isEnd ? 0 : std::fread(piece, 1, wanted, file);
    }
    return std::ferror(file) == 0;
}

// The size of the byte order mark.
std::size_t FileReader::RecognizeForm(std::string_view sample) {
    for (const ByteOrderMark& mark : ByteOrderMarks) {
        if (sample.starts_with(mark.bytes)) {
            m_form = {mark.flag, mark.encoding};
            AddXmlReport(m_result, "bom");
            return mark.bytes.size();
        }
    }
    m_form.encoding = DeclaredEncoding(sample);
    if (m_form.encoding.empty() && sample.starts_with('<')) {
        m_form.encoding = Utf8;
    }
    return 0;
}

// Drops zero bytes immediately, so that a sparse file takes no memory.
void FileReader::Append(std::string_view piece) {
    if (IsUtf16() || piece.find('\0') == std::string_view::npos) {
        m_text.append(piece);
        return;
    }
    for (const char byte : piece) {
        if (byte == '\0') {
            ++m_nulls;
        } else {
            m_text += byte;
        }
    }
}

void FileReader::RemoveNullUnits() {
    std::size_t kept = 0;
    for (std::size_t at = 0; at + 1 < m_text.size(); at += 2) {
        if (m_text[at] == '\0' && m_text[at + 1] == '\0') {
            ++m_nulls;
            continue;
        }
        m_text[kept++] = m_text[at];
        m_text[kept++] = m_text[at + 1];
    }
    m_text.resize(kept);
}

void FileReader::ReportRead(const std::string& encoding) {
    const std::uint64_t length = IsUtf16() ? m_bytesRead / 2 : m_bytesRead;
    AddXmlReport(m_result, "read", {.encoding = encoding.c_str(), .length = length});
    if (m_nulls != 0) {
        AddXmlReport(m_result, "nulls_removed", {.count = m_nulls});
    }
}

bool FileReader::ConvertUtf16() {
    RemoveNullUnits();
    ReportRead(m_form.encoding);
    if (m_form.encoding != NativeUtf16()) {
        SwapUtf16(m_text);
        AddXmlReport(m_result, "endian_swap");
    }
    return ConvertFrom(NativeUtf16());
}

bool FileReader::ConvertBytes() {
    if (!m_form.encoding.empty()) {
        ReportRead(m_form.encoding);
        // UTF-8 needs no conversion, and a text in an unknown encoding stays unchanged.
        return IsUtf8Name(m_form.encoding) || !CanConvertEncoding(Utf8, m_form.encoding) ||
               ConvertFrom(m_form.encoding);
    }
    bool hasNonAscii = false;
    bool isDone = true;
    if (IsUtf8(m_text, hasNonAscii)) {
        m_form.encoding = Utf8;
        ReportRead(m_form.encoding);
    } else {
        ReportRead(m_form.encoding);
        isDone = ConvertFrom(m_form.encoding);
    }
    AddXmlReport(m_result, "utf8_detection");
    return isDone;
}

bool FileReader::ConvertFrom(const std::string& encoding) {
    XmlConversion conversion = ConvertEncoding(Utf8, encoding, m_text, m_limit, ConversionMargin);
    if (!conversion.isDone) {
        errno = conversion.isTooLong ? EFBIG : EILSEQ;
        return false;
    }
    m_text = std::move(conversion.text);
    AddXmlReport(m_result, "converted_to", {.encoding = Utf8, .length = m_text.size()});
    if (conversion.lost != 0) {
        AddXmlReport(m_result, "conversion_loss");
    }
    return true;
}

// The bytes of the text in the encoding of the file.
std::string_view ConvertToFile(std::string_view text, const std::string& encoding, std::string& converted,
                               std::string& result) {
    if (IsUtf8Name(encoding)) {
        return text;
    }
    XmlConversion conversion = ConvertEncoding(encoding, Utf8, text, SIZE_MAX);
    if (!conversion.isDone) {
        return text;
    }
    converted = std::move(conversion.text);
    AddXmlReport(result, "converted_from", {.encoding = Utf8, .length = text.size()});
    if (conversion.lost != 0) {
        AddXmlReport(result, "conversion_loss");
    }
    return converted;
}

std::string EncodingForSave(std::string_view text, const XmlFileForm& form) {
    if (!form.encoding.empty() || text.empty()) {
        return form.encoding;
    }
    std::string declared = DeclaredEncoding(text);
    return declared.empty() ? Utf8 : declared;
}

}  // namespace

bool ReadXmlFile(const char* path, std::uint64_t limit, std::string& text, XmlFileForm& form, std::string& result) {
    return FileReader(limit, text, form, result).Read(path);
}

bool WriteXmlFile(const char* path, std::string_view text, const XmlFileForm& form, std::string& result) {
    File file = Open(path, "wb");
    if (file == nullptr) {
        return FileError(errno, result);
    }
    for (const ByteOrderMark& mark : ByteOrderMarks) {
        if ((form.flags & mark.flag) != 0) {
            std::fwrite(mark.bytes.data(), 1, mark.bytes.size(), file.get());
        }
    }
    const std::string encoding = EncodingForSave(text, form);
    std::string converted;
    const std::string_view bytes = text.empty() ? text : ConvertToFile(text, encoding, converted, result);
    const std::size_t written = std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    const bool isWritten = written == bytes.size() && std::ferror(file.get()) == 0;
    const int error = errno;
    if (std::fclose(file.release()) != 0) {
        return FileError(errno, result);
    }
    if (!isWritten) {
        return FileError(error, result);
    }
    const bool isUtf16 = (form.flags & (XmlFileForm::Utf16LeFlag | XmlFileForm::Utf16BeFlag)) != 0;
    AddXmlReport(result, "write", {.encoding = encoding.c_str(), .length = isUtf16 ? bytes.size() / 2 : bytes.size()});
    return true;
}
