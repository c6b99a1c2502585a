#include "Frameworks/Utilities/StdString.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t FormatMargin = 1024;
constexpr std::size_t NumberSize = 64;
constexpr int DefaultDecimals = 6;

int Position(std::size_t found) { return found == std::string::npos ? -1 : static_cast<int>(found); }

std::size_t LastStart(int start) { return start < 0 ? std::string::npos : static_cast<std::size_t>(start); }

char Upper(char character) { return static_cast<char>(std::toupper(static_cast<unsigned char>(character))); }

char Lower(char character) { return static_cast<char>(std::tolower(static_cast<unsigned char>(character))); }

}  // namespace

StdString::StdString(const char* text) : m_text(text == nullptr ? "" : text) {}

StdString& StdString::operator=(const char* text) {
    m_text = text == nullptr ? "" : text;
    return *this;
}

StdString& StdString::operator=(char character) {
    m_text.assign(1, character);
    return *this;
}

StdString& StdString::operator+=(const StdString& text) {
    m_text += text.m_text;
    return *this;
}

StdString& StdString::operator+=(const char* text) {
    if (text != nullptr) {
        m_text += text;
    }
    return *this;
}

StdString& StdString::operator+=(char character) {
    m_text += character;
    return *this;
}

int StdString::Find(const StdString& text, int start) const {
    return Position(m_text.find(text.m_text, static_cast<std::size_t>(std::max(start, 0))));
}

int StdString::Find(char character, int start) const {
    return Position(m_text.find(character, static_cast<std::size_t>(std::max(start, 0))));
}

int StdString::ReverseFind(const StdString& text, int start) const {
    return Position(m_text.rfind(text.m_text, LastStart(start)));
}

int StdString::ReverseFind(char character, int start) const {
    return Position(m_text.rfind(character, LastStart(start)));
}

StdString StdString::Left(int count) const { return Mid(0, std::clamp(count, 0, Length())); }

StdString StdString::Right(int count) const { return Mid(Length() - std::clamp(count, 0, Length())); }

StdString StdString::Mid(int start, int count) const {
    const int from = std::max(start, 0);
    if (from >= Length()) {
        return {};
    }
    return m_text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(std::max(count, 0)));
}

StdString StdString::Mid(int start) const { return Mid(start, Length()); }

void StdString::Trim(const char* set) {
    TrimRight(set);
    TrimLeft(set);
}

void StdString::TrimLeft(const char* set) { m_text.erase(0, m_text.find_first_not_of(set)); }

void StdString::TrimRight(const char* set) { m_text.erase(m_text.find_last_not_of(set) + 1); }

void StdString::ToUpper() { std::transform(m_text.begin(), m_text.end(), m_text.begin(), Upper); }

void StdString::ToLower() { std::transform(m_text.begin(), m_text.end(), m_text.begin(), Lower); }

void StdString::Reverse() { std::reverse(m_text.begin(), m_text.end()); }

int StdString::Replace(char from, char to) {
    const auto count = std::count(m_text.begin(), m_text.end(), from);
    std::replace(m_text.begin(), m_text.end(), from, to);
    return static_cast<int>(count);
}

int StdString::Replace(const char* from, const char* to) {
    if (from == nullptr || *from == '\0') {
        return 0;
    }
    const std::string search = from;
    const std::string replacement = to == nullptr ? "" : to;
    int count = 0;
    for (std::size_t at = m_text.find(search); at != std::string::npos;
         at = m_text.find(search, at + replacement.size())) {
        m_text.replace(at, search.size(), replacement);
        ++count;
    }
    return count;
}

void StdString::Remove(char character) { std::erase(m_text, character); }

void StdString::Insert(int position, char character) { Insert(position, StdString(character)); }

void StdString::Insert(int position, const StdString& text) {
    m_text.insert(static_cast<std::size_t>(std::clamp(position, 0, Length())), text.m_text);
}

void StdString::Delete(int position, int count) {
    if (position < 0 || position >= Length()) {
        return;
    }
    m_text.erase(static_cast<std::size_t>(position), static_cast<std::size_t>(std::max(count, 0)));
}

int StdString::CompareNoCase(const StdString& text) const {
    StdString left = *this;
    StdString right = text;
    left.ToLower();
    right.ToLower();
    return left.m_text.compare(right.m_text);
}

void StdString::Format(const char* format, ...) {
    std::vector<char> buffer(std::strlen(format) + FormatMargin);
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    m_text = length < 1 ? "" : buffer.data();
}

std::int32_t StdString::ToInteger() { return static_cast<std::int32_t>(ToUnsigned()); }

std::uint32_t StdString::ToUnsigned() {
    Trim();
    ToLower();
    if (m_text.find('x') == std::string::npos) {
        // Limited by long, which on the instrument is half the range.
        return static_cast<std::uint32_t>(std::strtol(m_text.c_str(), nullptr, 10));
    }
    unsigned int value = 0;
    // NOLINTNEXTLINE(cert-err34-c): a text that is no number gives 0, as the readers of settings expect
    return std::sscanf(m_text.c_str(), "%x", &value) == 1 ? value : 0;
}

double StdString::ToDouble() const { return std::strtod(m_text.c_str(), nullptr); }

float StdString::ToFloat() const { return static_cast<float>(ToDouble()); }

bool StdString::ToBool() {
    Trim();
    ToLower();
    return m_text == "true" || m_text == "yes" || m_text == "on" || m_text == "1";
}

void StdString::FromInteger(int value) {
    char buffer[NumberSize];
    m_text.assign(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

void StdString::FromDouble(double value, const StdString& format) {
    char buffer[NumberSize];
    if (format.IsEmpty()) {
        // The same digits as "%f", ten times as fast.
        const std::to_chars_result end =
            std::to_chars(buffer, buffer + sizeof buffer - 1, value, std::chars_format::fixed, DefaultDecimals);
        if (end.ec == std::errc()) {
            m_text.assign(buffer, end.ptr);
            return;
        }
    }
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(buffer, sizeof buffer, format.IsEmpty() ? "%f" : format.CString(), value);
#pragma GCC diagnostic pop
    m_text = buffer;
}

int StdString::ReadFile(const StdString& path) {
    m_text.clear();
    std::FILE* file = path.IsEmpty() ? nullptr : std::fopen(path.CString(), "r");
    if (file == nullptr) {
        return 0;
    }
    for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file)) {
        m_text += static_cast<char>(byte);
    }
    std::fclose(file);
    return Length();
}

int StdString::WriteFile(const StdString& path) const {
    std::FILE* file = path.IsEmpty() ? nullptr : std::fopen(path.CString(), "w");
    if (file == nullptr) {
        return 0;
    }
    const std::size_t written = std::fwrite(m_text.data(), 1, m_text.size(), file);
    return std::fclose(file) == 0 ? static_cast<int>(written) : 0;
}
