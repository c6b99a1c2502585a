// The status of a path. For an empty path or a failed stat every query returns false. One thread at a time.
#pragma once

#include <sys/stat.h>

#include <cstdint>

#include "Frameworks/Utilities/StdString.h"

class FileStatus {
public:
    bool IsBlockDevice(const StdString& path) { return IsType(path, S_IFBLK); }
    bool IsCharacterDevice(const StdString& path) { return IsType(path, S_IFCHR); }
    bool IsDirectory(const StdString& path) { return IsType(path, S_IFDIR); }
    bool IsFifo(const StdString& path) { return IsType(path, S_IFIFO); }
    bool IsRegularFile(const StdString& path) { return IsType(path, S_IFREG); }
    bool IsSocket(const StdString& path) { return IsType(path, S_IFSOCK); }
    bool IsSymbolicLink(const StdString& path);  // the link itself, not its target

    // Bytes; 0 for an empty path, the size of the last successful stat if this one fails.
    std::int64_t GetSize(const StdString& path);
    // A regular file of no bytes, by one stat.
    bool IsEmptyFile(const StdString& path) { return IsRegularFile(path) && m_status.st_size == 0; }

    // By descriptor, into `status`.
    static bool GetStatus(int descriptor, struct stat64& status);

private:
    bool Look(const StdString& path);
    bool IsType(const StdString& path, mode_t type);

    StdString m_path;
    struct stat64 m_status = {};
};
