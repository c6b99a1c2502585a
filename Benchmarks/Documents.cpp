#include "Benchmarks/Documents.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr const char* MemoryFolder = "/dev/shm";
constexpr std::size_t LargeSize = 20'000'000;
constexpr std::string_view RootStart = "<ROOT_ANALYZER>\n";
constexpr std::string_view RootEnd = "</ROOT_ANALYZER>";

class Folder {
public:
    Folder() : m_path(Base() / ("benchmarks-" + std::to_string(getpid()))) { fs::create_directories(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    std::string Write(const std::string& name, const std::string& text) const {
        const std::string path = m_path / name;
        std::ofstream file(path, std::ios::binary);
        if (!(file << text).flush()) {
            EndForFailure("can't write " + path);
        }
        return path;
    }

private:
    static fs::path Base() { return fs::exists(MemoryFolder) ? fs::path(MemoryFolder) : fs::temp_directory_path(); }

    fs::path m_path;
};

std::string Sample() {
    const std::string path = SOURCE_FOLDER "/configuration/analyzer.conf.xml";
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    if (text.str().empty()) {
        EndForFailure("can't read " + path);
    }
    return text.str();
}

// The sample with its sections repeated.
std::string Large(const std::string& sample) {
    const std::size_t start = sample.find(RootStart) + RootStart.size();
    const std::size_t end = sample.rfind(RootEnd);
    const std::string sections = sample.substr(start, end - start);
    std::string text = sample.substr(0, start);
    text.reserve(LargeSize + sample.size());
    while (text.size() < LargeSize) {
        text += sections;
    }
    return text.append(sample, end);
}

}  // namespace

const std::string& DocumentPath(DocumentSize size) {
    static const Folder folder;
    static const std::string small = folder.Write("small.xml", Sample());
    static const std::string large = folder.Write("large.xml", Large(Sample()));
    return size == SMALL ? small : large;
}

void EndForFailure(const std::string& what) {
    std::fprintf(stderr, "benchmarks: %s\n", what.c_str());
    std::exit(2);
}
