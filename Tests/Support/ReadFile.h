// A whole file as text; empty if there is none.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

inline std::string ReadFile(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}
