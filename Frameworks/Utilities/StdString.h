// The text type of the system: eight bits to a character, no encoding of its own. Positions and lengths are signed; -1
// means not found. One thread at a time.
#pragma once

#include <cstdint>
#include <string>

class StdString {
public:
    StdString() = default;
    StdString(const char* text);  // null counts as empty
    StdString(std::string text) : m_text(std::move(text)) {}
    StdString(char character) : m_text(1, character) {}
    StdString(const StdString&) = default;
    StdString(StdString&&) = default;
    virtual ~StdString() = default;

    StdString& operator=(const StdString&) = default;
    StdString& operator=(StdString&&) = default;
    StdString& operator=(const char* text);
    StdString& operator=(char character);

    StdString& operator+=(const StdString& text);
    StdString& operator+=(const char* text);
    StdString& operator+=(char character);

    friend StdString operator+(StdString left, const StdString& right) { return std::move(left += right); }
    friend StdString operator+(StdString left, const char* right) { return std::move(left += right); }
    friend StdString operator+(StdString left, char right) { return std::move(left += right); }
    friend bool operator==(const StdString& left, const StdString& right) { return left.m_text == right.m_text; }
    friend bool operator==(const StdString& left, const char* right) { return left.m_text == right; }
    friend bool operator<(const StdString& left, const StdString& right) { return left.m_text < right.m_text; }

    const std::string& Text() const { return m_text; }
    const char* CString() const { return m_text.c_str(); }

    void Clear() { m_text.clear(); }
    bool IsEmpty() const { return m_text.empty(); }
    int Length() const { return static_cast<int>(m_text.size()); }

    // The first occurrence that begins at or after start.
    int Find(const StdString& text, int start = 0) const;
    int Find(const char* text, int start = 0) const { return Find(StdString(text), start); }
    int Find(char character, int start = 0) const;
    // The last occurrence that begins at or before start; -1 searches from the end.
    int ReverseFind(const StdString& text, int start = -1) const;
    int ReverseFind(const char* text, int start = -1) const { return ReverseFind(StdString(text), start); }
    int ReverseFind(char character, int start = -1) const;

    StdString Left(int count) const;   // count is limited to 0 to the length
    StdString Right(int count) const;  // likewise
    // A negative start or count counts as 0, and the count is limited to the rest; empty past the end.
    StdString Mid(int start, int count) const;
    StdString Mid(int start) const;

    // In place.
    void Trim(const char* set = " \t\r\n");
    void TrimLeft(const char* set = " \t\r\n");
    void TrimRight(const char* set = " \t\r\n");
    void ToUpper();
    void ToLower();
    void Reverse();
    int Replace(char from, char to);
    int Replace(const char* from, const char* to);  // number of replacements; a null "to" counts as empty
    void Remove(char character);
    void Insert(int position, char character);
    void Insert(int position, const StdString& text);
    void Insert(int position, const char* text) { Insert(position, StdString(text)); }
    void Delete(int position, int count);

    // Below 0, 0 or above 0, by the bytes in lower case.
    int CompareNoCase(const StdString& text) const;

    // As printf; the result is limited to the format's length plus 1023 characters. An empty result empties the text.
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // Both trim the text itself and change it to lower case. An "x" anywhere means hexadecimal; 0 if it is no number.
    std::int32_t ToInteger();
    std::uint32_t ToUnsigned();
    double ToDouble() const;
    float ToFloat() const;
    bool ToBool();  // likewise; true for "true", "yes", "on" and "1"

    // Decimal.
    void FromInteger(int value);
    void FromDouble(double value, const StdString& format = StdString());  // an empty format means "%f"

    // Returns the length; an empty path or a file that does not open gives an empty text.
    int ReadFile(const StdString& path);
    // Returns the bytes written; 0 for an empty path, or if opening or closing fails.
    int WriteFile(const StdString& path) const;

private:
    std::string m_text;
};
