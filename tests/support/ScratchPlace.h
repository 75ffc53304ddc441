#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Support {

/// Where tests make the folders of their files: TMPDIR if it is set, else in memory if there is
/// room, which spares every sync the wait for a disk, else where the system keeps temporary files.
inline std::filesystem::path scratchPlace() {
    namespace fs = std::filesystem;
    constexpr std::uintmax_t enough = std::uintmax_t{1}
                                      << 30; // bytes, for all tests that run at once
    fs::path const memory = "/dev/shm";
    std::error_code error;
    auto const space = fs::space(memory, error);
    bool const room = !error && space.available >= enough;
    return std::getenv("TMPDIR") == nullptr && room ? memory : fs::temp_directory_path();
}

} // namespace Support
