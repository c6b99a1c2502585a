// A file for one test, removed at its end.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

class XmlTestFile {
public:
    XmlTestFile() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        m_path = testing::TempDir() + test->test_suite_name() + "." + test->name() + "." + std::to_string(getpid());
    }
    explicit XmlTestFile(const std::string& content) : XmlTestFile() { Write(content); }
    ~XmlTestFile() { std::remove(m_path.c_str()); }
    XmlTestFile(const XmlTestFile&) = delete;
    XmlTestFile& operator=(const XmlTestFile&) = delete;

    const char* Path() const { return m_path.c_str(); }

    void Write(const std::string& content) const { std::ofstream(m_path, std::ios::binary) << content; }

    std::string Read() const {
        std::ifstream file(m_path, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

private:
    std::string m_path;
};
