// A fresh folder for one test, removed at its end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace Bench {

class TemporaryFolder {
public:
    TemporaryFolder() {
        char name[] = "/tmp/bench-console-XXXXXX";
        m_path = mkdtemp(name) != nullptr ? name : "";
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string operator/(const std::string& name) const { return m_path + "/" + name; }
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

inline void WriteFile(const std::string& path, const std::string& text, bool append = false) {
    std::ofstream(path, append ? std::ios::app : std::ios::trunc) << text;
}

inline std::string ReadFile(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

}  // namespace Bench
