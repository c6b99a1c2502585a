#include "Bench/Sound/Clip.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

namespace Bench {

namespace {

constexpr std::size_t ChunkHead = 8;    // name and size
constexpr std::size_t FormatSize = 16;  // as much of it as is used
constexpr std::uint32_t Pcm = 1;
constexpr std::uint32_t MinRate = 2000;  // samples a second
constexpr std::uint32_t MaxRate = 192000;
constexpr std::uint32_t MaxChannels = 8;
constexpr int MaxChunks = 64;
constexpr std::int64_t NanoSeconds = 1000000000;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

struct Format {
    std::uint32_t rate = 0;
    std::uint32_t frame = 0;  // bytes of one sample of all channels
};

std::uint32_t Number(const unsigned char* bytes, int count) {
    std::uint32_t number = 0;
    for (int i = count - 1; i >= 0; --i) {
        number = number << 8U | bytes[i];
    }
    return number;
}

bool Read(std::FILE* file, unsigned char* bytes, std::size_t size) { return std::fread(bytes, 1, size, file) == size; }

bool IsNamed(const unsigned char* head, const char* name) { return std::memcmp(head, name, 4) == 0; }

bool ReadFormat(std::FILE* file, std::uint32_t size, Format& format) {
    std::array<unsigned char, FormatSize> bytes{};
    if (size < FormatSize || !Read(file, bytes.data(), bytes.size())) {
        return false;
    }
    const std::uint32_t channels = Number(bytes.data() + 2, 2);
    const std::uint32_t bits = Number(bytes.data() + 14, 2);
    format.rate = Number(bytes.data() + 4, 4);
    format.frame = channels * bits / 8;
    return Number(bytes.data(), 2) == Pcm && channels >= 1 && channels <= MaxChannels && bits >= 8 && bits <= 32 &&
           bits % 8 == 0 && format.rate >= MinRate && format.rate <= MaxRate;
}

// The bytes of the file after its present position.
std::int64_t BytesLeft(std::FILE* file) {
    const long here = std::ftell(file);
    if (here < 0 || std::fseek(file, 0, SEEK_END) != 0) {
        return 0;
    }
    return std::ftell(file) - here;
}

std::optional<std::int64_t> ReadLength(std::FILE* file) {
    std::array<unsigned char, 12> riff{};
    if (!Read(file, riff.data(), riff.size()) || !IsNamed(riff.data(), "RIFF") || !IsNamed(riff.data() + 8, "WAVE")) {
        return std::nullopt;
    }
    Format format;
    for (int chunk = 0; chunk < MaxChunks; ++chunk) {
        std::array<unsigned char, ChunkHead> head{};
        if (!Read(file, head.data(), head.size())) {
            return std::nullopt;
        }
        const std::uint32_t size = Number(head.data() + 4, 4);
        if (IsNamed(head.data(), "data")) {
            const std::int64_t bytes = std::min<std::int64_t>(size, BytesLeft(file));
            return format.rate == 0 ? std::nullopt
                                    : std::optional<std::int64_t>(bytes / format.frame * NanoSeconds / format.rate);
        }
        const off64_t next = ftello64(file) + size + size % 2;
        if ((IsNamed(head.data(), "fmt ") && !ReadFormat(file, size, format)) || fseeko64(file, next, SEEK_SET) != 0) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::int64_t> ClipNanoSeconds(const std::string& path, std::string& error) {
    std::error_code failure;
    const bool ordinary = std::filesystem::is_regular_file(path, failure);  // a pipe would block the player
    const File file(ordinary ? std::fopen(path.c_str(), "rb") : nullptr, std::fclose);
    const std::optional<std::int64_t> length = file == nullptr ? std::nullopt : ReadLength(file.get());
    if (!length) {
        error = "not a PCM clip in a RIFF file";
    }
    return length;
}

}  // namespace Bench
