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

}  // namespace
