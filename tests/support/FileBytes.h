#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

namespace Support {

/// All bytes of a file; none of one that cannot be read. They come in blocks: byte by byte, a
/// sanitizer would make megabytes a matter of seconds.
inline std::string bytesOf(std::filesystem::path const& path) {
    std::ifstream const file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return std::move(bytes).str();
}

} // namespace Support
