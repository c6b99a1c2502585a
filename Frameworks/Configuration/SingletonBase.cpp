#include "Frameworks/Configuration/SingletonBase.h"

#include <atomic>

namespace {

// Freed only when replaced: at the end of the process running threads may still read them.
std::atomic<SystemConfigurationFile*> systemConfiguration{nullptr};
std::atomic<UserConfigurationFile*> userConfiguration{nullptr};

template <class File>
bool Replace(std::atomic<File*>& place, std::unique_ptr<File> file) {
    const std::unique_ptr<File> before(place.exchange(nullptr));
    if (before != nullptr) {
        before->Cleanup();
    }
    place = file.release();
    return place != nullptr;
}

}  // namespace

bool SingletonBase::SetSystemConfiguration(std::unique_ptr<SystemConfigurationFile> file) {
    return Replace(systemConfiguration, std::move(file));
}

bool SingletonBase::SetUserConfiguration(std::unique_ptr<UserConfigurationFile> file) {
    return Replace(userConfiguration, std::move(file));
}

SystemConfigurationFile* SingletonBase::GetSystemConfiguration() { return systemConfiguration; }

UserConfigurationFile* SingletonBase::GetUserConfiguration() { return userConfiguration; }
