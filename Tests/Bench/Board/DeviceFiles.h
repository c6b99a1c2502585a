// Device files as a program uses them, with the error number of what the kernel refuses.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>

// 0, or the error number of open or write.
inline int WriteDevice(const std::string& path, const std::string& text) {
    const int file = open(path.c_str(), O_WRONLY);
    if (file < 0) {
        return errno;
    }
    const ssize_t written = write(file, text.data(), text.size());
    const int error = written == static_cast<ssize_t>(text.size()) ? 0 : errno;
    close(file);
    return error;
}

// The content, or "!" and the error number.
inline std::string ReadDevice(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY);
    if (file < 0) {
        return "!" + std::to_string(errno);
    }
    char text[4096];
    const ssize_t got = read(file, text, sizeof(text));
    std::string result = got < 0 ? "!" + std::to_string(errno) : std::string(text, static_cast<std::size_t>(got));
    close(file);
    return result;
}

// One access to a register as a driver does it. False where the page can't be mapped.
inline bool AccessRegister(std::uint32_t address, std::uint32_t& value, bool writing) {
    constexpr std::uint32_t PageMask = 0xFFF;
    constexpr std::size_t PageSize = 4096;
    const int file = open("/dev/mem", O_RDWR | O_SYNC);
    if (file < 0) {
        return false;
    }
    void* page =
        mmap(nullptr, PageSize, PROT_READ | PROT_WRITE, MAP_SHARED, file, static_cast<off_t>(address & ~PageMask));
    if (page != MAP_FAILED) {
        volatile std::uint32_t* word = static_cast<std::uint32_t*>(page) + (address & PageMask) / sizeof(std::uint32_t);
        if (writing) {
            *word = value;
        } else {
            value = *word;
        }
        munmap(page, PageSize);
    }
    close(file);
    return page != MAP_FAILED;
}

inline std::uint32_t ReadRegister(std::uint32_t address) {
    std::uint32_t value = 0xDEADBEEF;
    AccessRegister(address, value, false);
    return value;
}

inline bool WriteRegister(std::uint32_t address, std::uint32_t value) { return AccessRegister(address, value, true); }

// One PWM channel at half duty; the period in nanoseconds.
inline void StartPwm(int channel, int period) {
    const std::string chip = "/sys/class/pwm/pwmchip0/";
    const std::string folder = chip + "pwm" + std::to_string(channel);
    ASSERT_EQ(WriteDevice(chip + "export", std::to_string(channel)), 0);
    ASSERT_EQ(WriteDevice(folder + "/period", std::to_string(period)), 0);
    ASSERT_EQ(WriteDevice(folder + "/duty_cycle", std::to_string(period / 2)), 0);
    ASSERT_EQ(WriteDevice(folder + "/enable", "1"), 0);
}

// The pump at one turn a second, its current on.
inline void StartPump() {
    ASSERT_TRUE(WriteRegister(0xFFFFF430, 0x70));
    StartPwm(1, 625000);
}
