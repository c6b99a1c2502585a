#include "Drivers/SysfsClaim.h"

#include "Drivers/DeviceFile.h"
#include "Drivers/Print.h"

bool SysfsClaim::Export(const SysfsKind& kind, const std::string& directory, const std::string& number) {
    if (DeviceFile::DirectoryOpens(directory)) {
        return FailWithError("already used\n");
    }
    return Write(kind, kind.exportFile, number, kind.exportFailure);
}

bool SysfsClaim::Unexport(const SysfsKind& kind, const std::string& directory, const std::string& number) {
    if (!DeviceFile::DirectoryOpens(directory)) {
        return FailWithError("not used yet\n");
    }
    return Write(kind, kind.unexportFile, number, kind.unexportFailure);
}

bool SysfsClaim::Write(const SysfsKind& kind, const std::string& path, const std::string& text, const char* failure) {
    const DeviceFile::WriteResult result = DeviceFile::WriteText(path, text);
    const bool failed =
        kind.refusalFails ? result != DeviceFile::WriteResult::Written : result == DeviceFile::WriteResult::NotOpened;
    return !failed || FailWithError(failure);
}
