#include "Frameworks/Utilities/StrTokenizer.h"

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
