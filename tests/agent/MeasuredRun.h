#pragma once

#include "agent/RunVpagent.h"

namespace VpAgentTest {

/// A run of the program, and what it took.
struct Measured {
    Outcome outcome;
    double seconds = 0;     ///< of the processor
    long peakMebibytes = 0; ///< of memory
};

/// Runs the program with a file as its standard input, or without any. A run that takes more than a
/// minute of the processor is ended by SIGXCPU; one that waits, by SIGALRM.
Measured measuredRun(std::vector<std::string> const& arguments,
                     std::string const& input = "/dev/null");

/// Whether the program holds back freed memory and keeps shadows of it, so that its peak says
/// little.
constexpr bool memoryIsPadded() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    return true;
#endif
#endif
    return false;
}

/// A file of that many bytes which takes no room on the disk, but for those at its front.
void makeSparse(std::filesystem::path const& path, std::uintmax_t size,
                std::string_view front = {});

} // namespace VpAgentTest
