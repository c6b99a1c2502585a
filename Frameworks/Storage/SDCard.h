// The SD card: whether it is in the slot and mounted, its space, and the mounting itself. The tests of presence, mount
// and space look at the file system alone and may run in any thread; the rest belongs to the owner's. The destructor
// unmounts.
#pragma once

#include <csignal>
#include <cstdint>

#include "Frameworks/Storage/MountEntry.h"
#include "Frameworks/Utilities/StdString.h"

class SDCard {
public:
    // As sigaction takes it.
    using SignalHandler = void (*)(int signal, siginfo_t* information, void* context);

    SDCard() = default;
    SDCard(const SDCard&) = delete;
    SDCard& operator=(const SDCard&) = delete;
    ~SDCard();

    // By the block device.
    bool IsPresent() const;
    bool IsMounted();  // an empty mount path becomes the default one
    bool Mount();      // true also where it is mounted already; false without a card
    bool Unmount();

    bool SetMountPath(const StdString& path);  // always true
    StdString GetMountPath() const { return m_mountPath; }

    // A card is present and its switch input reads high.
    bool IsSwitchSet() const;

    // Bytes; -1 without a mounted card. Free counts all free blocks, those that are kept for the superuser too.
    std::int64_t GetTotalBytes();
    std::int64_t GetFreeBytes();
    // Less than (100 - percent) hundredths of the card are free. False where the space is unknown, and above 99
    // percent.
    bool IsSpaceBelow(std::uint8_t percent);

    // Has the handler called (SIGRTMIN + 1) whenever an entry of /dev comes or goes. A further call replaces the first.
    bool WatchDeviceDirectory(SignalHandler handler);

    // Debugging aids. The first compares the raw status of the shell, which is never 1 for a command that ended by
    // itself.
    static bool IsMountedByShell();
    void ListMounts();

private:
    bool InstallWatch(SignalHandler handler);

    StdString m_mountPath = "/mnt/sd-card";
    int m_notifyDescriptor = -1;
    MountEntry m_mountEntry;
};
