// Follows files that another process appends to. Returns each complete line once. One thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

// One file. It need not exist yet, and may vanish and come back with the same content.
class FileTail {
public:
    explicit FileTail(std::string path) : m_path(std::move(path)) {}

    // The lines completed since the last call, without line end or carriage return.
    std::vector<std::string> Read();

private:
    std::string m_path;
    std::int64_t m_offset = 0;
    std::string m_rest;
};

// All files of a folder that are named "YYYY-MM-DD_NAME", the oldest first.
class DayFileTail {
public:
    DayFileTail(std::string folder, std::string name) : m_folder(std::move(folder)), m_name(std::move(name)) {}

    struct Line {
        std::string file;
        std::string text;
    };
    std::vector<Line> Read();

private:
    std::string m_folder;
    std::string m_name;
    std::map<std::string, FileTail> m_files;
};

// The text in one line of the bench's log file, control characters escaped as there; nothing if the line has another
// form.
std::optional<std::string> TextOfLogRecord(const std::string& line);

}  // namespace Bench
