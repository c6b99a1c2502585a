// What lines and PWM channels have in common: they are claimed and given back through the kernel's export files, and
// set by small text files. Failure texts go to the error stream. Any thread.
#pragma once

#include <string>

// One kind of thing that the kernel hands out.
struct SysfsKind {
    const char* exportFile;
    const char* unexportFile;
    const char* exportFailure;
    const char* unexportFailure;
    bool refusalFails;  // if not, only a missing file fails, and a value that the kernel refuses goes unnoticed
};

inline constexpr const char* NotLockedYet = "not locked yet\n";

namespace SysfsClaim {

// False if the directory exists, so that a claim is exclusive, or if the export file fails.
bool Export(const SysfsKind& kind, const std::string& directory, const std::string& number);
// False if the directory does not exist, or if the unexport file fails.
bool Unexport(const SysfsKind& kind, const std::string& directory, const std::string& number);
// Also prints the failure. An attribute that opens but refuses the text fails only if the kind says so.
bool Write(const SysfsKind& kind, const std::string& path, const std::string& text, const char* failure);

}  // namespace SysfsClaim
