// Random numbers that depend on the seed alone, with every standard library. One thread.
#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace Bench {

class Random {
public:
    explicit Random(std::uint32_t seed) : m_engine(seed) {}

    // 0 to below `count`, which is at least 1.
    std::uint32_t Below(std::uint32_t count) { return static_cast<std::uint32_t>(m_engine()) % count; }
    std::uint32_t Between(std::uint32_t min, std::uint32_t max) { return min + Below(max - min + 1); }
    // 0 to below 1.
    double Share() { return static_cast<double>(m_engine()) / 4294967296.0; }
    bool OneIn(std::uint32_t count) { return Below(count) == 0; }

    std::string Bytes(std::size_t length) {
        std::string bytes(length, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(Below(256));
        }
        return bytes;
    }

private:
    std::mt19937 m_engine;
};

}  // namespace Bench
