// Splits a text at a delimiter. One thread at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "Frameworks/Utilities/StdString.h"

class StrTokenizer {
public:
    StrTokenizer() = default;
    StrTokenizer(const StrTokenizer&) = default;
    StrTokenizer& operator=(const StrTokenizer&) = default;
    virtual ~StrTokenizer() = default;

    // An empty text changes nothing; an empty delimiter appends the whole text as one token. After each delimiter the
    // text goes on one character behind its start, so a longer delimiter leaves its tail at the front of the next
    // token: the delimiters in use are single characters.
    void Tokenize(const StdString& text, const StdString& delimiter);

    int GetCount() const { return static_cast<int>(m_tokens.size()); }

    // An index out of range reads as an empty text or 0.
    StdString GetToken(int index) const;
    std::int32_t GetInteger(int index) const;
    std::uint32_t GetUnsigned(int index) const;
    double GetDouble(int index) const;

    // Tokens with the delimiter between them: up to and with an index, from an index on, or both.
    StdString JoinUpTo(int last) const;
    StdString JoinFrom(int first) const;
    StdString Join(int first, int last) const;

private:
    StdString m_delimiter;
    std::vector<StdString> m_tokens;
};
