// The length of a sound file, judged from its own bytes: nothing in it is believed that the file does not hold.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Bench {

// Nanoseconds that the PCM clip in that RIFF file plays; nothing, with a sentence in `error`, for any other file.
std::optional<std::int64_t> ClipNanoSeconds(const std::string& path, std::string& error);

}  // namespace Bench
