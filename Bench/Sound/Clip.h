// The length of a sound file, from the bytes that it really contains.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Bench {

// Nanoseconds of the PCM clip in that RIFF file. Nothing, with the reason in `error`, for any other file.
std::optional<std::int64_t> ClipNanoSeconds(const std::string& path, std::string& error);

}  // namespace Bench
