#include "Frameworks/Storage/FileStatus.h"

bool FileStatus::IsSymbolicLink(const StdString& path) {
    m_path = path;
    return !path.IsEmpty() && lstat64(path.CString(), &m_status) == 0 && S_ISLNK(m_status.st_mode);
}

std::int64_t FileStatus::GetSize(const StdString& path) {
    if (path.IsEmpty()) {
        return 0;
    }
    Look(path);
    return m_status.st_size;
}

bool FileStatus::GetStatus(int descriptor, struct stat64& status) { return fstat64(descriptor, &status) == 0; }

bool FileStatus::Look(const StdString& path) {
    m_path = path;
    return !path.IsEmpty() && stat64(path.CString(), &m_status) == 0;
}

bool FileStatus::IsType(const StdString& path, mode_t type) {
    return Look(path) && (m_status.st_mode & S_IFMT) == type;
}
