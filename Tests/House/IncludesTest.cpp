// Checks the includes of the product against the order of its layers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// From the bottom up; an area may include itself and the areas in its row.
const std::map<std::string, std::vector<std::string>>& Layers() {
    static const std::map<std::string, std::vector<std::string>> layers = {
        {"Frameworks/Utilities", {}},
        {"Frameworks/Xml", {"Frameworks/Utilities"}},
        {"Frameworks/Threading", {"Frameworks/Utilities"}},
        {"Frameworks/Messaging", {"Frameworks/Utilities", "Frameworks/Xml", "Frameworks/Threading"}},
        {"Frameworks/Configuration",
         {"Frameworks/Utilities", "Frameworks/Xml", "Frameworks/Threading", "Frameworks/Messaging"}},
        {"Frameworks/IPC/Networking", {"Frameworks/Utilities", "Frameworks/Threading", "Frameworks/Messaging"}},
        {"Drivers", {"Frameworks/Utilities", "Frameworks/Threading", "Frameworks/Messaging"}},
        {"Frameworks/Storage",
         {"Frameworks/Utilities", "Frameworks/Xml", "Frameworks/Threading", "Frameworks/Messaging", "Drivers"}},
        {"System",
         {"Frameworks/Utilities", "Frameworks/Xml", "Frameworks/Threading", "Frameworks/Messaging",
          "Frameworks/Configuration", "Frameworks/IPC/Networking", "Frameworks/Storage", "Drivers"}},
    };
    return layers;
}

struct Include {
    std::string file;    // from the root of the project
    std::string target;  // as written
};

bool StartsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

std::vector<std::string> FilesBelow(const std::string& folder) {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(SOURCE_FOLDER) / folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".h" || extension == ".cpp") {
            files.push_back(fs::relative(entry.path(), SOURCE_FOLDER).string());
        }
    }
    return files;
}

std::vector<Include> IncludesBelow(const std::string& folder) {
    const std::string start = "#include \"";
    std::vector<Include> includes;
    for (const std::string& file : FilesBelow(folder)) {
        std::ifstream stream(fs::path(SOURCE_FOLDER) / file);
        for (std::string line; std::getline(stream, line);) {
            if (StartsWith(line, start)) {
                includes.push_back({file, line.substr(start.size(), line.rfind('"') - start.size())});
            }
        }
    }
    return includes;
}

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) { return std::tolower(letter); });
    return text;
}

std::string AreaOf(const std::string& path) {
    for (const auto& [area, lower] : Layers()) {
        if (StartsWith(path, area + "/")) {
            return area;
        }
    }
    return path;
}

// System/<Controller>/File.h gives <Controller>.
std::string ControllerOf(const std::string& path) {
    const std::string rest = path.substr(std::string("System/").size());
    return rest.substr(0, rest.find('/'));
}

bool Contains(const std::vector<std::string>& list, const std::string& item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

}  // namespace

TEST(House, includes_run_downwards) {
    std::size_t seen = 0;
    for (const auto& [area, lower] : Layers()) {
        for (const Include& include : IncludesBelow(area)) {
            const std::string target = AreaOf(include.target);
            EXPECT_TRUE(target == area || Contains(lower, target)) << include.file << " includes " << include.target;
            ++seen;
        }
    }
    EXPECT_GT(seen, 100U);
}

// SystemControl makes the other controllers, so it alone includes them.
TEST(House, controllers_share_messages_only) {
    std::size_t shared = 0;
    for (const Include& include : IncludesBelow("System")) {
        if (!StartsWith(include.target, "System/") || ControllerOf(include.target) == ControllerOf(include.file)) {
            continue;
        }
        if (StartsWith(include.target, "System/Messages/")) {
            ++shared;
            continue;
        }
        EXPECT_TRUE(StartsWith(include.file, "System/SystemControl/"))
            << include.file << " includes " << include.target;
    }
    EXPECT_GT(shared, 20U);
}

TEST(House, the_product_does_not_mention_the_bench) {
    for (const char* folder : {"Frameworks", "Drivers", "System"}) {
        for (const std::string& file : FilesBelow(folder)) {
            std::ifstream stream(fs::path(SOURCE_FOLDER) / file);
            for (std::string line; std::getline(stream, line);) {
                for (const char* word : {"bench", "virtual board", "libboard", "gtest"}) {
                    EXPECT_EQ(LowerCase(line).find(word), std::string::npos) << file << ": " << line;
                }
            }
        }
    }
}

TEST(House, the_peers_do_not_include_the_product) {
    std::size_t seen = 0;
    for (const Include& include : IncludesBelow("Bench/Peers")) {
        EXPECT_TRUE(StartsWith(include.target, "Bench/Peers/") || StartsWith(include.target, "Bench/Common/"))
            << include.file << " includes " << include.target;
        ++seen;
    }
    for (const Include& include : IncludesBelow("Bench/Common")) {
        EXPECT_TRUE(StartsWith(include.target, "Bench/")) << include.file << " includes " << include.target;
        ++seen;
    }
    EXPECT_GT(seen, 20U);
}
