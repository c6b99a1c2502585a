// A sound file for the player on the board: silence of that many seconds, below the program's folder.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

inline void LaySoundClip(const std::string& boardFolder, const std::string& name, std::uint32_t seconds) {
    constexpr std::uint32_t SamplesPerSecond = 8000;  // of one byte
    const std::uint32_t samples = seconds * SamplesPerSecond;
    const auto word = [](std::uint32_t number) {
        std::string bytes;
        for (int i = 0; i < 4; ++i) {
            bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
        }
        return bytes;
    };
    const std::string format = std::string("\1\0\1\0", 4) + word(SamplesPerSecond) + word(SamplesPerSecond) +
                               std::string("\1\0\10\0", 4);  // PCM, one channel of eight bits
    const std::filesystem::path path = boardFolder + "/usr/share/vorn/bin/" + name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << "RIFF" << word(samples + 36) << "WAVEfmt " << word(16) << format << "data"
                                          << word(samples) << std::string(samples, '\x80');
}
