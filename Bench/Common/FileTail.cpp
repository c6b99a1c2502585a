#include "Bench/Common/FileTail.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>

namespace Bench {

namespace {

constexpr std::size_t DayLength = 11;  // "2026-12-31_"

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};

}  // namespace

std::vector<std::string> FileTail::Read() {
    std::vector<std::string> lines;
    const int file = open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return lines;
    }
    char buffer[8192];
    ssize_t got = 0;
    while ((got = pread64(file, buffer, sizeof(buffer), m_offset)) > 0) {
        m_offset += got;
        m_rest.append(buffer, static_cast<std::size_t>(got));
    }
    close(file);
    std::size_t start = 0;
    for (std::size_t end = m_rest.find('\n'); end != std::string::npos; end = m_rest.find('\n', start)) {
        std::size_t length = end - start;
        if (length > 0 && m_rest[end - 1] == '\r') {
            --length;
        }
        lines.push_back(m_rest.substr(start, length));
        start = end + 1;
    }
    m_rest.erase(0, start);
    return lines;
}

std::vector<DayFileTail::Line> DayFileTail::Read() {
    const std::unique_ptr<DIR, DirectoryCloser> directory(opendir(m_folder.c_str()));
    while (directory) {
        const dirent64* entry = readdir64(directory.get());
        if (entry == nullptr) {
            break;
        }
        const std::string file = entry->d_name;
        if (file.size() == DayLength + m_name.size() && file.compare(DayLength, std::string::npos, m_name) == 0) {
            m_files.try_emplace(file, m_folder + "/" + file);
        }
    }
    std::vector<Line> lines;
    for (auto& [file, tail] : m_files) {
        for (std::string& line : tail.Read()) {
            lines.push_back({file, std::move(line)});
        }
    }
    return lines;
}

std::optional<std::string> TextOfLogRecord(const std::string& line) {
    constexpr int FieldsBefore = 4;  // priority, identity, options, facility
    std::size_t start = 0;
    for (int field = 0; field < FieldsBefore; ++field) {
        const std::size_t tab = line.find('\t', start);
        if (tab == std::string::npos) {
            return std::nullopt;
        }
        start = tab + 1;
    }
    return line.substr(start, line.find('\t', start) - start);
}

}  // namespace Bench
