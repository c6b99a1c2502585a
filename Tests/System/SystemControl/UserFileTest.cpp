// A user file in the working folder has no effect on the system.
#include "Frameworks/Configuration/SingletonBase.h"
#include "Tests/Frameworks/Configuration/SettingsText.h"
#include "Tests/Support/SystemFixture.h"

namespace {

class UserFile : public SystemOnBoard {
protected:
    UserFile() : SystemOnBoard(50.0), m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(m_folder.Path());
    }
    ~UserFile() override { std::filesystem::current_path(m_before); }

    TemporaryFolder m_folder;
    std::filesystem::path m_before;
};

TEST_F(UserFile, in_the_working_folder_is_not_loaded) {
    const std::string items = Item("AutoStartMeasurement", "true") + Item("AutoStartDelay", "4711");
    m_folder.Write("configuration/user.conf.xml",
                   Element("ROOT_USER", Element("USER_CONFIG_INFO", items) + Element("SYSTEM_CONTROL_INFO", items)));
    Start();
    WaitForIdle();
    EXPECT_EQ(SingletonBase::GetUserConfiguration(), nullptr);
    EXPECT_EQ(system->GetTimeOut(), -1);
}

TEST_F(UserFile, is_loaded_by_the_operation_that_nothing_calls) {
    EXPECT_FALSE(SystemControl::LoadUserConfiguration()) << "there is no file";
    EXPECT_EQ(SingletonBase::GetUserConfiguration(), nullptr);
    m_folder.Write("configuration/user.conf.xml", Element("ROOT_OTHER", ""));
    EXPECT_FALSE(SystemControl::LoadUserConfiguration()) << "the root is another";
    m_folder.Write("configuration/user.conf.xml",
                   Element("ROOT_USER", Element("USER_CONFIG_INFO", Item("Language", "4711"))));
    EXPECT_TRUE(SystemControl::LoadUserConfiguration());
    EXPECT_EQ(SingletonBase::GetUserConfiguration()->GetUserConfigInfo()->RequireValue("Language"), "4711");
    SingletonBase::SetUserConfiguration(nullptr);
}

}  // namespace
