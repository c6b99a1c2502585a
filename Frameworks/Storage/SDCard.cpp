#include "Frameworks/Storage/SDCard.h"

#include <fcntl.h>
#include <mntent.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "Drivers/Board.h"
#include "Drivers/DeviceFile.h"
#include "Drivers/GpioPin.h"
#include "Frameworks/Storage/FileStatus.h"

namespace {

constexpr char Device[] = "/dev/mmcblk0";
constexpr char Partition[] = "/dev/mmcblk0p1";
constexpr char FileSystem[] = "vfat";
constexpr char MountData[] = "";
constexpr unsigned long MountFlags = MS_SYNCHRONOUS;  // a write returns when the card has the bytes
constexpr char MountTable[] = "/etc/mtab";
constexpr char DefaultMountPath[] = "/mnt/sd-card";
constexpr char DeviceDirectory[] = "/dev";
constexpr mode_t DirectoryMode = 0700;
constexpr std::uint8_t MaxPercent = 99;
constexpr std::size_t MountLineSize = 4096;
constexpr std::size_t MountTablePiece = 1024;

std::int64_t Bytes(const struct statfs64& space, fsblkcnt64_t blocks) {
    const std::int64_t blockSize = space.f_bsize;
    return blockSize * static_cast<std::int64_t>(blocks);
}

// Stops at the path: the kernel builds the table again for each read.
bool IsInMountTable(const StdString& path) {
    const FileDescriptor file(MountTable, O_RDONLY | O_CLOEXEC);
    std::string table;
    char piece[MountTablePiece];
    const auto next = [&] { return read(file.Get(), piece, sizeof piece); };  // -1 if the table did not open
    for (ssize_t length = next(); length > 0; length = next()) {
        table.append(piece, static_cast<std::size_t>(length));
        if (table.find(path.Text()) != std::string::npos) {
            return true;
        }
    }
    return false;
}

void PrintSpace(const char* path) {
    struct statfs64 space {};
    if (statfs64(path, &space) == 0) {
        std::printf(" size=%" PRId64 " free=%" PRId64 " avail=%" PRId64, Bytes(space, space.f_blocks),
                    Bytes(space, space.f_bfree), Bytes(space, space.f_bavail));
    }
}

}  // namespace

SDCard::~SDCard() {
    if (m_notifyDescriptor != -1) {
        close(m_notifyDescriptor);
    }
    Unmount();
}

bool SDCard::IsPresent() const { return FileStatus().IsBlockDevice(Device); }

bool SDCard::IsMounted() {
    if (m_mountPath.IsEmpty()) {
        m_mountPath = DefaultMountPath;
    }
    return IsInMountTable(m_mountPath);
}

bool SDCard::Mount() {
    if (!IsPresent()) {
        return false;
    }
    if (IsMounted()) {
        return true;
    }
    if (!FileStatus().IsDirectory(m_mountPath)) {
        mkdir(m_mountPath.CString(), DirectoryMode);  // if this fails, so does the mount
    }
    return mount(Partition, m_mountPath.CString(), FileSystem, MountFlags, MountData) == 0;
}

bool SDCard::Unmount() { return umount(m_mountPath.CString()) == 0; }

bool SDCard::SetMountPath(const StdString& path) {
    m_mountPath = path;
    return true;
}

bool SDCard::IsSwitchSet() const { return IsPresent() && GpioPin(OnBoard::CardSwitch).Read() == HIGH_GPIO_LEVEL; }

std::int64_t SDCard::GetTotalBytes() {
    struct statfs64 space {};
    if (!IsPresent() || !IsMounted() || statfs64(m_mountPath.CString(), &space) != 0) {
        return -1;
    }
    return Bytes(space, space.f_blocks);
}

std::int64_t SDCard::GetFreeBytes() {
    struct statfs64 space {};
    if (!IsPresent() || !IsMounted() || statfs64(m_mountPath.CString(), &space) != 0) {
        return -1;
    }
    return Bytes(space, space.f_bfree);
}

bool SDCard::IsSpaceBelow(std::uint8_t percent) {
    const std::int64_t total = GetTotalBytes();
    const std::int64_t free = GetFreeBytes();
    if (total < 1 || free < 1 || percent > MaxPercent) {
        return false;
    }
    return free < total * (100 - percent) / 100;
}

bool SDCard::WatchDeviceDirectory(SignalHandler handler) {
    if (m_notifyDescriptor != -1) {
        close(m_notifyDescriptor);
        m_notifyDescriptor = -1;
    }
    if (InstallWatch(handler)) {
        return true;
    }
    if (m_notifyDescriptor != -1) {
        close(m_notifyDescriptor);
        m_notifyDescriptor = -1;
    }
    return false;
}

bool SDCard::InstallWatch(SignalHandler handler) {
    const int signal = SIGRTMIN + 1;
    struct sigaction action {};
    action.sa_sigaction = handler;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    sigemptyset(&action.sa_mask);
    if (sigaction(signal, &action, nullptr) != 0) {
        return false;
    }
    m_notifyDescriptor = open(DeviceDirectory, O_RDONLY | O_CLOEXEC);
    return m_notifyDescriptor != -1 && fcntl(m_notifyDescriptor, F_SETSIG, signal) == 0 &&
           fcntl(m_notifyDescriptor, F_NOTIFY, DN_CREATE | DN_DELETE) == 0;
}

bool SDCard::IsMountedByShell() {
    // NOLINTNEXTLINE(cert-env33-c): a fixed text, for debugging
    return std::system("mount | grep -c mmcblk0p1") == 1;
}

void SDCard::ListMounts() {
    FILE* table = setmntent(MountTable, "r");
    if (table == nullptr) {
        return;
    }
    char line[MountLineSize];
    mntent fields{};
    while (getmntent_r(table, &fields, line, sizeof line) != nullptr) {
        m_mountEntry.device = fields.mnt_fsname;
        m_mountEntry.directory = fields.mnt_dir;
        m_mountEntry.type = fields.mnt_type;
        m_mountEntry.options = fields.mnt_opts;
        m_mountEntry.dumpFrequency.FromInteger(fields.mnt_freq);
        m_mountEntry.passNumber.FromInteger(fields.mnt_passno);
        std::printf("%s %s %s %s %s %s", m_mountEntry.device.CString(), m_mountEntry.directory.CString(),
                    m_mountEntry.type.CString(), m_mountEntry.options.CString(), m_mountEntry.dumpFrequency.CString(),
                    m_mountEntry.passNumber.CString());
        PrintSpace(fields.mnt_dir);
        std::printf("\n");
    }
    endmntent(table);
}
