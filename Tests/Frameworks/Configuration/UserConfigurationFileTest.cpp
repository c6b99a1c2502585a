#include "Frameworks/Configuration/UserConfigurationFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Frameworks/Configuration/SettingsText.h"
#include "Tests/Support/ReportedLines.h"

namespace {

class UserSettings : public testing::Test {
protected:
    UserSettings() : m_before(std::filesystem::current_path()) { std::filesystem::current_path(m_folder.Path()); }
    ~UserSettings() override { std::filesystem::current_path(m_before); }

    TemporaryFolder m_folder;
    std::filesystem::path m_before;
    UserConfigurationFile m_file;
};

const std::string UserText = Element("ROOT_USER", Element("USER_CONFIG_INFO", Item("Key", "Value")));

}  // namespace

TEST_F(UserSettings, load_from_the_default_path_without_a_path) {
    m_folder.Write("configuration/user.conf.xml", UserText);
    EXPECT_TRUE(m_file.Load(""));
    EXPECT_TRUE(m_file.GetXML());
    EXPECT_EQ(m_file.GetUserConfigInfo()->RequireValue("Key"), "Value");
}

TEST_F(UserSettings, load_from_the_path_given) {
    EXPECT_FALSE(m_file.Load(""));
    EXPECT_TRUE(m_file.Load(m_folder.Write("other.xml", UserText).c_str()));
    EXPECT_TRUE(m_file.GetXML());
    EXPECT_EQ(m_file.GetUserConfigInfo()->RequireValue("Key"), "Value");
}

TEST_F(UserSettings, that_are_not_well_formed_do_not_load) {
    EXPECT_FALSE(m_file.Load(m_folder.Write("other.xml", "<ROOT_USER>").c_str()));
    EXPECT_EQ(m_file.GetDocument(), nullptr);
    EXPECT_FALSE(m_file.GetXML());
}

TEST_F(UserSettings, with_another_root_are_not_read) {
    ASSERT_TRUE(m_file.Load(m_folder.Write("other.xml", "<ROOT_ANALYZER><USER_CONFIG_INFO/></ROOT_ANALYZER>").c_str()));
    EXPECT_FALSE(m_file.GetXML());
    EXPECT_EQ(m_file.GetUserConfigInfo(), nullptr);
}

TEST_F(UserSettings, without_their_section_are_not_read) {
    ASSERT_TRUE(m_file.Load(m_folder.Write("other.xml", "<ROOT_USER><OTHER/></ROOT_USER>").c_str()));
    EXPECT_FALSE(m_file.GetXML());
}

TEST_F(UserSettings, are_not_written) {
    ASSERT_TRUE(m_file.Load(m_folder.Write("other.xml", UserText).c_str()));
    EXPECT_FALSE(m_file.SetXML());
}

TEST_F(UserSettings, stay_through_a_clean_up) {
    ASSERT_TRUE(m_file.Load(m_folder.Write("other.xml", UserText).c_str()));
    ASSERT_TRUE(m_file.GetXML());
    m_file.Cleanup();
    EXPECT_NE(m_file.GetDocument(), nullptr);
    EXPECT_EQ(m_file.GetUserConfigInfo()->RequireValue("Key"), "Value");
}

TEST_F(UserSettings, report_nothing) {
    const ReportedLines lines;
    EXPECT_FALSE(m_file.Load(""));
    EXPECT_FALSE(m_file.GetXML());
    EXPECT_THAT(lines.Texts(), testing::IsEmpty());
}
