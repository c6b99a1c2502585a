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

    // An empty text changes nothing; an empty delimiter appends the whole text as one token. Each token begins one
    // character after the start of the delimiter, so a longer delimiter leaves its tail at the front of the next token.
    void Tokenize(const StdString& text, const StdString& delimiter);

    int GetCount() const { return static_cast<int>(m_tokens.size()); }

    // An index out of range gives an empty text or 0.
    StdString GetToken(int index) const;
    std::int32_t GetInteger(int index) const;

private:
    StdString m_delimiter;  // of the last cut
    std::vector<StdString> m_tokens;
};
