// A new empty folder, removed with its contents at the end.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = testing::TempDir() + "vernicor-test-XXXXXX";
        m_path = mkdtemp(name.data()) != nullptr ? name : "";
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& Path() const { return m_path; }
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

    // Returns the path of the file.
    std::string Write(const std::string& name, const std::string& text) const {
        const std::filesystem::path path = *this / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
        return path.string();
    }

private:
    std::string m_path;
};
