// The sample settings, changed as a test needs them, and put with the sounds into the folder of the board.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Bench/Common/SettingsFile.h"
#include "Tests/Support/ReadFile.h"

class SampleConfiguration {
public:
    SampleConfiguration() : m_settings(ReadFile(SOURCE_FOLDER "/configuration/analyzer.conf.xml")) {
        EXPECT_FALSE(Text().empty());
    }

    const std::string& Text() const { return m_settings.Text(); }

    // The value of the first item of that name.
    SampleConfiguration& Set(const std::string& key, const std::string& value) {
        EXPECT_TRUE(m_settings.Set(key, value)) << key;
        return *this;
    }

    SampleConfiguration& SetInAllSteps(const std::string& key, const std::string& value) {
        EXPECT_TRUE(m_settings.SetAll(key, value)) << key;
        return *this;
    }

    SampleConfiguration& Remove(const std::string& key) {
        EXPECT_TRUE(m_settings.Remove(key)) << key;
        return *this;
    }

    SampleConfiguration& RemoveSection(const std::string& section) {
        const std::string end = "</" + section + ">";
        const std::size_t start = Text().find("<" + section + ">");
        const std::size_t length = Text().find(end) + end.size() - start;
        return Replace(Text().substr(start, length), "");
    }

    SampleConfiguration& Replace(const std::string& from, const std::string& to) {
        std::string text = Text();
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        m_settings = Bench::SettingsFile(text.replace(at, from.size(), to));
        return *this;
    }

    void LayInto(const std::string& boardFolder) const {
        const std::filesystem::path path = boardFolder + "/usr/share/vorn/bin/configuration/analyzer.conf.xml";
        std::filesystem::create_directories(path.parent_path());
        std::filesystem::copy(
            CLIPS_FOLDER, path.parent_path().parent_path(),
            std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
        // Under another name first, so that a reader never sees half of it.
        const std::filesystem::path fresh = path.string() + ".new";
        std::ofstream(fresh) << Text();
        std::filesystem::rename(fresh, path);
    }

private:
    Bench::SettingsFile m_settings;
};
