// The SD card: presence, mount and space. Any thread may test for presence, mount and space, which only looks at the
// file system; only the owner's thread uses the rest. The destructor unmounts.
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
    bool Mount();      // true also if it is mounted already; false without a card
    bool Unmount();

    bool SetMountPath(const StdString& path);  // always true
    StdString GetMountPath() const { return m_mountPath; }

    // A card is present and its switch input reads high.
    bool IsSwitchSet() const;

    // Bytes; -1 without a mounted card. Free space includes the blocks reserved for the superuser.
    std::int64_t GetTotalBytes();
    std::int64_t GetFreeBytes();
    // Whether less than 100 - percent of 100 parts of the card are free. False if the space is unknown, and above 99
    // percent.
    bool IsSpaceBelow(std::uint8_t percent);

    // Calls the handler (by SIGRTMIN + 1) when an entry of /dev appears or disappears. Another call replaces the first.
    bool WatchDeviceDirectory(SignalHandler handler);

    // For debugging. The first compares the raw status of the shell, which is never 1 for a command that exits.
    static bool IsMountedByShell();
    void ListMounts();

private:
    bool InstallWatch(SignalHandler handler);

    StdString m_mountPath = "/mnt/sd-card";
    int m_notifyDescriptor = -1;
    MountEntry m_mountEntry;
};
