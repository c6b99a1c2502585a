// The sample settings, changed where a test needs it, laid with the sounds where the program on the board looks for
// them.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Tests/Support/ReadFile.h"

class SampleConfiguration {
public:
    SampleConfiguration() : m_text(ReadFile(SOURCE_FOLDER "/configuration/analyzer.conf.xml")) {
        EXPECT_FALSE(m_text.empty());
    }

    const std::string& Text() const { return m_text; }

    // The value of the first item of that name.
    SampleConfiguration& Set(const std::string& key, const std::string& value) {
        const std::size_t item = ItemOf(key);
        const std::string mark = " value=\"";
        const std::size_t start = m_text.find(mark, item) + mark.size();
        m_text.replace(start, m_text.find('"', start) - start, value);
        return *this;
    }

    // Every item of that name in every step.
    SampleConfiguration& SetInAllSteps(const std::string& key, const std::string& value) {
        const std::string name = "name=\"" + key + "\"";
        const std::string mark = " value=\"";
        for (std::size_t at = m_text.find(name); at != std::string::npos; at = m_text.find(name, at + 1)) {
            const std::size_t start = m_text.find(mark, at) + mark.size();
            m_text.replace(start, m_text.find('"', start) - start, value);
        }
        return *this;
    }

    SampleConfiguration& Remove(const std::string& key) {
        const std::size_t start = m_text.rfind('<', ItemOf(key));
        m_text.erase(start, m_text.find("/>", start) + 2 - start);
        return *this;
    }

    SampleConfiguration& RemoveSection(const std::string& section) {
        const std::size_t start = m_text.find("<" + section + ">");
        const std::string end = "</" + section + ">";
        EXPECT_NE(start, std::string::npos) << section;
        m_text.erase(start, m_text.find(end, start) + end.size() - start);
        return *this;
    }

    SampleConfiguration& Replace(const std::string& from, const std::string& to) {
        const std::size_t at = m_text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        m_text.replace(at, from.size(), to);
        return *this;
    }

    void LayInto(const std::string& boardFolder) const {
        const std::filesystem::path path = boardFolder + "/usr/share/vorn/bin/configuration/analyzer.conf.xml";
        std::filesystem::create_directories(path.parent_path());
        std::filesystem::copy(
            CLIPS_FOLDER, path.parent_path().parent_path(),
            std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
        // By way of another name, so that a reader never meets half of it.
        const std::filesystem::path fresh = path.string() + ".new";
        std::ofstream(fresh) << m_text;
        std::filesystem::rename(fresh, path);
    }

private:
    std::size_t ItemOf(const std::string& key) const {
        const std::size_t item = m_text.find("<INFO_ITEM name=\"" + key + "\"");
        EXPECT_NE(item, std::string::npos) << key;
        return item;
    }

    std::string m_text;
};
