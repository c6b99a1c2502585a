#include "Frameworks/Utilities/StrTokenizer.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> Tokens(const StrTokenizer& tokenizer) {
    std::vector<std::string> tokens;
    for (int index = 0; index < tokenizer.GetCount(); ++index) {
        tokens.push_back(tokenizer.GetToken(index).Text());
    }
    return tokens;
}

std::vector<std::string> Split(const char* text, const char* delimiter) {
    StrTokenizer tokenizer;
    tokenizer.Tokenize(text, delimiter);
    return Tokens(tokenizer);
}

using Expected = std::vector<std::string>;

}  // namespace

TEST(StrTokenizer, cuts_at_each_delimiter_and_keeps_empty_tokens) {
    EXPECT_EQ(Split("a,,b,", ","), (Expected{"a", "", "b", ""}));
    EXPECT_EQ(Split(",", ","), (Expected{"", ""}));
}

TEST(StrTokenizer, a_text_without_the_delimiter_is_one_token) { EXPECT_EQ(Split("abc", ","), (Expected{"abc"})); }

TEST(StrTokenizer, a_longer_delimiter_leaves_its_tail_in_front_of_the_next_token) {
    EXPECT_EQ(Split("a--b--c", "--"), (Expected{"a", "-b", "-c"}));
}

TEST(StrTokenizer, an_empty_text_changes_nothing) {
    StrTokenizer tokenizer;
    tokenizer.Tokenize("a,b", ",");
    tokenizer.Tokenize("", ",");
    EXPECT_EQ(Tokens(tokenizer), (Expected{"a", "b"}));
}

TEST(StrTokenizer, an_empty_delimiter_appends_the_whole_text) {
    StrTokenizer tokenizer;
    tokenizer.Tokenize("a,b", ",");
    tokenizer.Tokenize("c,d", "");
    EXPECT_EQ(Tokens(tokenizer), (Expected{"a", "b", "c,d"}));
}

TEST(StrTokenizer, another_text_replaces_the_tokens) {
    StrTokenizer tokenizer;
    tokenizer.Tokenize("a,b", ",");
    tokenizer.Tokenize("c;d;e", ";");
    EXPECT_EQ(Tokens(tokenizer), (Expected{"c", "d", "e"}));
}

TEST(StrTokenizer, readers_convert_and_give_nothing_out_of_range) {
    StrTokenizer tokenizer;
    tokenizer.Tokenize("12,0x1F", ",");
    EXPECT_EQ(tokenizer.GetInteger(0), 12);
    EXPECT_EQ(tokenizer.GetInteger(1), 31);
    EXPECT_EQ(tokenizer.GetInteger(2), 0);
    EXPECT_EQ(tokenizer.GetInteger(-1), 0);
    EXPECT_EQ(tokenizer.GetToken(99), "");
}
