// The encoding names that are registered for documents. Any thread.
#pragma once

#include <cstdint>
#include <string_view>

// The Windows code page of an encoding name in any case; 0 if the name is unknown or has over 99 characters.
std::uint32_t EncodingCodePage(std::string_view name);
