#include "Frameworks/Utilities/StrTokenizer.h"

#include <algorithm>

void StrTokenizer::Tokenize(const StdString& text, const StdString& delimiter) {
    if (text.IsEmpty()) {
        return;
    }
    if (delimiter.IsEmpty()) {
        m_tokens.push_back(text);
        return;
    }
    m_delimiter = delimiter;
    m_tokens.clear();
    int start = 0;
    for (int found = text.Find(delimiter); found >= 0; found = text.Find(delimiter, start)) {
        m_tokens.push_back(text.Mid(start, found - start));
        start = found + 1;
    }
    m_tokens.push_back(text.Mid(start));
}

StdString StrTokenizer::GetToken(int index) const {
    return index >= 0 && index < GetCount() ? m_tokens[static_cast<std::size_t>(index)] : StdString();
}

std::int32_t StrTokenizer::GetInteger(int index) const { return GetToken(index).ToInteger(); }

std::uint32_t StrTokenizer::GetUnsigned(int index) const { return GetToken(index).ToUnsigned(); }

double StrTokenizer::GetDouble(int index) const { return GetToken(index).ToDouble(); }

StdString StrTokenizer::JoinUpTo(int last) const { return Join(0, last); }

StdString StrTokenizer::JoinFrom(int first) const { return Join(first, GetCount() - 1); }

StdString StrTokenizer::Join(int first, int last) const {
    StdString joined;
    for (int index = std::max(first, 0); index <= last && index < GetCount(); ++index) {
        if (index > std::max(first, 0)) {
            joined += m_delimiter;
        }
        joined += m_tokens[static_cast<std::size_t>(index)];
    }
    return joined;
}
