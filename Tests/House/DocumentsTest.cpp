// Checks that the paths, links, commands and names in the documents exist.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Tests/Support/ReadFile.h"

namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

// All files and folders of the project, relative to its root, without what was built.
const std::set<std::string>& Files() {
    static const std::set<std::string> files = [] {
        std::set<std::string> found;
        for (const fs::directory_entry& top : fs::directory_iterator(SOURCE_FOLDER)) {
            const std::string name = top.path().filename();
            if (name == "build" || name[0] == '.') {
                continue;
            }
            found.insert(name);
            if (top.is_directory()) {
                for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top)) {
                    found.insert(fs::relative(entry.path(), SOURCE_FOLDER).string());
                }
            }
        }
        return found;
    }();
    return files;
}

Words Documents() {
    Words documents;
    std::copy_if(Files().begin(), Files().end(), std::back_inserter(documents),
                 [](const std::string& file) { return file.ends_with(".md"); });
    return documents;
}

// The texts between two marks, within a line.
Words Between(const std::string& text, const std::string& open, const std::string& close) {
    Words found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        for (std::size_t start = line.find(open); start != std::string::npos; start = line.find(open, start)) {
            start += open.size();
            const std::size_t end = line.find(close, start);
            if (end == std::string::npos) {
                break;
            }
            found.push_back(line.substr(start, end - start));
            start = end + close.size();
        }
    }
    return found;
}

// Code in a document: between backticks, or a line indented by four blanks.
Words CodeOf(const std::string& document) {
    Words code = Between(document, "`", "`");
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("    ")) {
            code.push_back(line.substr(4, line.find(" #") - 4));
        }
    }
    return code;
}

// Without the punctuation of the sentence around them.
Words WordsOf(const std::string& text) {
    std::istringstream stream(text);
    Words words;
    for (std::string word; stream >> word;) {
        word.erase(word.find_last_not_of(",;:") + 1);
        words.push_back(word);
    }
    return words;
}

// A placeholder, as System/<Name>/ or ..._Status.csv.
bool IsPattern(const std::string& word) {
    return word.find_first_of("<>*$") != std::string::npos || word.find("..") == 0;
}

bool IsThere(std::string path) {
    path.erase(0, path.starts_with("./") ? 2 : 0);
    return Files().count(path.ends_with('/') ? path.substr(0, path.size() - 1) : path) > 0;
}

bool IsNameOfAFile(const std::string& name) {
    return std::any_of(Files().begin(), Files().end(),
                       [&name](const std::string& file) { return fs::path(file).filename() == name; });
}

// A path from the root of the project, unless it is built or a package, or a bare name with an ending that no file of
// the instrument has.
bool NamesAFile(const std::string& word) {
    const std::size_t slash = word.find('/');
    if (slash != std::string::npos) {
        return slash > 0 && slash + 1 < word.size() &&
               fs::is_directory(fs::path(SOURCE_FOLDER) / word.substr(0, slash)) && !word.starts_with("build/") &&
               !word.ends_with(".deb");
    }
    const std::string ending = fs::path(word).extension();
    return ending == ".cpp" || ending == ".h" || ending == ".md" || ending == ".txt";
}

// The lists at the top of ./test, and the word for a fresh system.
Words StagesOf(const std::string& script) {
    Words stages = {"fresh"};
    for (const std::string list : {"\ndefaults=(", "\nothers=("}) {
        const std::size_t start = script.find(list) + list.size();
        for (const std::string& stage : WordsOf(script.substr(start, script.find(')', start) - start))) {
            stages.push_back(stage);
        }
    }
    return stages;
}

Words CommandsOf(const std::string& program) {
    Words commands;
    for (const std::string& document : Documents()) {
        for (const std::string& code : CodeOf(ReadFile(fs::path(SOURCE_FOLDER) / document))) {
            for (std::size_t at = code.find(program); at != std::string::npos; at = code.find(program, at + 1)) {
                commands.push_back(code.substr(at + program.size()));
            }
        }
    }
    return commands;
}

// The folders that have a README.md.
Words DescribedFolders() {
    Words folders = {"Drivers"};
    for (const char* top : {"System", "Frameworks", "Bench"}) {
        for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(SOURCE_FOLDER) / top)) {
            if (entry.is_directory()) {
                folders.push_back(std::string(top) + "/" + entry.path().filename().string());
            }
        }
    }
    return folders;
}

// Letters, digits and "_" in one piece, with a letter first.
Words IdentifiersOf(const std::string& text) {
    Words identifiers;
    for (std::size_t at = 0; at < text.size();) {
        const auto isPart = [](char letter) {
            return std::isalnum(static_cast<unsigned char>(letter)) || letter == '_';
        };
        const auto start = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), isPart);
        const auto end = std::find_if_not(start, text.end(), isPart);
        if (start != end && !std::isdigit(static_cast<unsigned char>(*start))) {
            identifiers.emplace_back(start, end);
        }
        at = static_cast<std::size_t>(end - text.begin());
    }
    return identifiers;
}

// All identifiers of the tree except its documents: in the files and in their names.
const std::set<std::string>& Names() {
    static const std::set<std::string> names = [] {
        std::set<std::string> found;
        for (const std::string& file : Files()) {
            if (!file.ends_with(".md")) {
                const fs::path path = fs::path(SOURCE_FOLDER) / file;
                for (const std::string& name :
                     IdentifiersOf(file + " " + (fs::is_directory(path) ? "" : ReadFile(path)))) {
                    found.insert(name);
                }
            }
        }
        return found;
    }();
    return names;
}

}  // namespace

TEST(Documents, name_existing_files) {
    std::size_t seen = 0;
    for (const std::string& document : Documents()) {
        for (const std::string& code : CodeOf(ReadFile(fs::path(SOURCE_FOLDER) / document))) {
            for (const std::string& word : WordsOf(code)) {
                if (IsPattern(word) || !NamesAFile(word)) {
                    continue;
                }
                EXPECT_TRUE(word.find('/') == std::string::npos ? IsNameOfAFile(word) : IsThere(word))
                    << document << ": " << word;
                ++seen;
            }
        }
    }
    EXPECT_GT(seen, 80U);
}

TEST(Documents, link_to_existing_files) {
    std::size_t seen = 0;
    for (const std::string& document : Documents()) {
        for (const std::string& link : Between(ReadFile(fs::path(SOURCE_FOLDER) / document), "](", ")")) {
            const fs::path target = fs::path(SOURCE_FOLDER) / fs::path(document).parent_path() / link;
            EXPECT_TRUE(link.starts_with("http") || fs::exists(target)) << document << ": " << link;
            ++seen;
        }
    }
    EXPECT_GE(seen, 8U);
}

TEST(Documents, name_existing_options_and_faults) {
    const std::string options =
        ReadFile(SOURCE_FOLDER "/Bench/Console/Options.cpp") + ReadFile(SOURCE_FOLDER "/Bench/Common/CommandLine.cpp");
    const std::string faults = ReadFile(SOURCE_FOLDER "/Bench/Board/BoardFaults.h");
    std::size_t seen = 0;
    for (const std::string& command : CommandsOf("./run ")) {
        const Words words = WordsOf(command);
        for (std::size_t at = 0; at < words.size(); ++at) {
            if (words[at].starts_with("--")) {
                EXPECT_TRUE(options.find(words[at] + '"') != std::string::npos ||
                            options.find(words[at] + ' ') != std::string::npos)
                    << command;
                ++seen;
            }
            if (words[at] == "--fault" && at + 1 < words.size() && words[at + 1] != "list") {
                const std::string name = words[at + 1].substr(0, words[at + 1].find_first_of("=@["));
                EXPECT_NE(faults.find("\"" + name + "\""), std::string::npos) << command;
            }
        }
    }
    EXPECT_GT(seen, 20U);
}

TEST(Documents, name_existing_stages) {
    const Words stages = StagesOf(ReadFile(SOURCE_FOLDER "/test"));
    ASSERT_GE(stages.size(), 12U);
    std::size_t seen = 0;
    for (const std::string& command : CommandsOf("./test ")) {
        const Words words = WordsOf(command);
        if (!words.empty()) {
            EXPECT_NE(std::find(stages.begin(), stages.end(), words[0]), stages.end()) << command;
            ++seen;
        }
    }
    EXPECT_GT(seen, 3U);
}

TEST(Documents, describe_each_folder_in_at_most_thirty_lines) {
    const Words folders = DescribedFolders();
    EXPECT_GE(folders.size(), 18U);
    for (const std::string& folder : folders) {
        const std::string page = ReadFile(fs::path(SOURCE_FOLDER) / folder / "README.md");
        EXPECT_GE(std::count(page.begin(), page.end(), '\n'), 5) << folder;
        EXPECT_LE(std::count(page.begin(), page.end(), '\n'), 30) << folder;
    }
}

TEST(Documents, name_existing_things_in_a_folder) {
    std::size_t seen = 0;
    for (const std::string& folder : DescribedFolders()) {
        for (const std::string& code : CodeOf(ReadFile(fs::path(SOURCE_FOLDER) / folder / "README.md"))) {
            for (const std::string& name : IdentifiersOf(code)) {
                EXPECT_TRUE(Names().count(name) > 0) << folder << "/README.md: " << code << ": " << name;
                ++seen;
            }
        }
    }
    EXPECT_GT(seen, 100U);
}
