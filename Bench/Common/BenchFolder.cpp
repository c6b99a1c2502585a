#include "Bench/Common/BenchFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <system_error>

namespace Bench {

namespace {

namespace fs = std::filesystem;

constexpr const char* MarkerName = ".bench-folder";
constexpr const char* Folders[] = {"card", "usr/share/vorn/bin/configuration", "var/log/vorn/data"};
constexpr const char* ProgramFolder = "usr/share/vorn/bin";
constexpr const char* ConfigurationFile = "usr/share/vorn/bin/configuration/analyzer.conf.xml";

}  // namespace

BenchFolder::~BenchFolder() {
    if (m_marker >= 0) {
        close(m_marker);
    }
}

bool BenchFolder::Take(const std::string& path, std::string& error) {
    std::error_code problem;
    fs::path folder = fs::absolute(path, problem).lexically_normal();
    if (!folder.has_filename()) {
        folder = folder.parent_path();
    }
    m_path = folder.string();
    if (fs::exists(folder, problem) && !fs::is_directory(folder, problem)) {
        error = path + " is not a folder";
        return false;
    }
    fs::create_directories(folder, problem);
    if (problem) {
        error = "can't make the folder " + path + ": " + problem.message();
        return false;
    }
    const bool empty = fs::is_empty(folder, problem);
    if (problem) {
        error = "can't read the folder " + path + ": " + problem.message();
        return false;
    }
    if (!empty && !fs::is_regular_file(folder / MarkerName, problem)) {
        error = path + " is neither empty nor a bench folder; left unchanged";
        return false;
    }
    return Mark(error) && Empty(error);
}

bool BenchFolder::Mark(std::string& error) {
    const std::string marker = m_path + "/" + MarkerName;
    m_marker = open(marker.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (m_marker < 0) {
        error = "can't write in the folder " + m_path;
        return false;
    }
    if (flock(m_marker, LOCK_EX | LOCK_NB) != 0) {
        error = "another run uses the folder " + m_path;
        return false;
    }
    return true;
}

bool BenchFolder::Empty(std::string& error) const {
    std::error_code problem;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_path, problem)) {
        if (entry.path().filename() == MarkerName) {
            continue;
        }
        std::error_code removal;
        fs::remove_all(entry.path(), removal);
        if (removal) {
            error = "can't remove " + entry.path().string() + ": " + removal.message();
            return false;
        }
    }
    if (problem) {
        error = "can't read the folder " + m_path + ": " + problem.message();
        return false;
    }
    return true;
}

bool BenchFolder::Fill(const std::string& configuration, const std::string& clips, std::string& error) const {
    std::error_code problem;
    for (const char* folder : Folders) {
        fs::create_directories(fs::path(m_path) / folder, problem);
        if (problem) {
            error = "can't make the folder " + m_path + "/" + folder + ": " + problem.message();
            return false;
        }
    }
    fs::copy(clips, fs::path(m_path) / ProgramFolder,
             fs::copy_options::recursive | fs::copy_options::overwrite_existing, problem);
    if (problem) {
        error = "can't copy the sounds from " + clips + ": " + problem.message();
        return false;
    }
    const fs::path file = fs::path(m_path) / ConfigurationFile;
    if (!(std::ofstream(file, std::ios::binary) << configuration << std::flush)) {
        error = "can't write the configuration " + file.string();
        return false;
    }
    return true;
}

}  // namespace Bench
