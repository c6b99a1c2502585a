// Checks that the product can write the log lines that the documents quote.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Tests/Support/ReadFile.h"

namespace {

namespace fs = std::filesystem;

std::string Sources() {
    std::string text;
    for (const char* folder : {"Drivers", "Frameworks", "System"}) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(SOURCE_FOLDER) / folder)) {
            text += entry.path().extension() == ".cpp" ? ReadFile(entry.path()) : "";
        }
    }
    return text;
}

// Joins texts that continue in the next line of a source.
std::string Joined(const std::string& sources) {
    std::string text;
    for (std::size_t at = 0; at < sources.size(); ++at) {
        const std::size_t next = sources.find_first_not_of(" \n", at + 1);
        if (sources[at] == '"' && next > at + 1 && next < sources.size() && sources[next] == '"') {
            at = next;
        } else {
            text += sources[at];
        }
    }
    return text;
}

// The texts between quotation marks with more than one word.
std::vector<std::string> QuotationsOf(const std::string& document) {
    std::vector<std::string> quotations;
    for (std::size_t start = document.find('"'); start != std::string::npos; start = document.find('"', start)) {
        const std::size_t end = document.find('"', start + 1);
        if (end == std::string::npos) {
            break;
        }
        const std::string text = document.substr(start + 1, end - start - 1);
        if (text.find(' ') != std::string::npos) {
            quotations.push_back(text);
        }
        start = end + 1;
    }
    return quotations;
}

// The texts between backticks that look like log lines: several words that end in "!" or "failed", or begin with a
// class and its operation.
std::vector<std::string> QuotedLines(const std::string& document) {
    std::vector<std::string> lines;
    for (std::size_t start = document.find('`'); start != std::string::npos; start = document.find('`', start)) {
        const std::size_t end = document.find('`', start + 1);
        if (end == std::string::npos) {
            break;
        }
        const std::string text = document.substr(start + 1, end - start - 1);
        if (text.find(' ') != std::string::npos &&
            (text.ends_with("!") || text.ends_with("failed") || text.find("::") != std::string::npos)) {
            lines.push_back(text);
        }
        start = end + 1;
    }
    return lines;
}

}  // namespace

TEST(House, operation_quotes_lines_that_the_product_writes) {
    const std::string sources = Joined(Sources());
    const std::vector<std::string> lines = QuotedLines(ReadFile(SOURCE_FOLDER "/Documentation/Operation.md"));
    EXPECT_GE(lines.size(), 35U);
    for (const std::string& line : lines) {
        EXPECT_NE(sources.find("\"" + line + "\""), std::string::npos) << line;
    }
}

TEST(House, hazards_quotes_texts_that_the_product_writes) {
    const std::string sources = Joined(Sources());
    const std::vector<std::string> quotations = QuotationsOf(ReadFile(SOURCE_FOLDER "/Documentation/Hazards.md"));
    EXPECT_GE(quotations.size(), 20U);
    for (const std::string& text : quotations) {
        EXPECT_NE(sources.find(text), std::string::npos) << text;
    }
}
