// Settings files for tests, and a folder for them.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

// Made empty, and removed with its content.
class TestFolder {
public:
    TestFolder() {
        std::string name = testing::TempDir() + "settings-XXXXXX";
        m_path = ::mkdtemp(name.data()) == nullptr ? "" : name;
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder() { std::filesystem::remove_all(m_path); }

    const std::string& Path() const { return m_path; }

    std::string Write(const std::string& name, const std::string& text) const {
        const std::filesystem::path path = std::filesystem::path(m_path) / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
        return path.string();
    }

private:
    std::string m_path;
};

inline std::string Element(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">\n";
}

inline std::string Item(const std::string& name, const std::string& value) {
    return "<INFO_ITEM name=\"" + name + "\" value=\"" + value + "\"/>\n";
}

inline std::string StepOrder() { return Element("MEASUREMENT_STEP_ORDER", Item("1", "HomePosition")); }

inline std::string Step(const std::string& name) { return Element("MEASUREMENT_STEP", Item("Step", name)); }

inline std::string StepList(const std::string& content) { return Element("MEASUREMENT_STEP_LIST", content); }
