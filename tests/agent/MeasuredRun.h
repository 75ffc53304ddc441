#pragma once

#include "agent/RunVpagent.h"
#include "support/Sanitizers.h"

namespace VpAgentTest {

/// A run of the program, and what it took: of the program alone, however large the test is.
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
inline bool memoryIsPadded() {
    return (Support::addressSanitizer() || Support::threadSanitizer()) && !isInstalledProgram();
}

/// Seconds of the processor, for whatever is refused: the worst takes one without sanitizers.
inline double littleTime() { return memoryIsPadded() ? 50 : 5; }

/// A file of that many bytes which takes no room on the disk, but for those at its front.
void makeSparse(std::filesystem::path const& path, std::uintmax_t size,
                std::string_view front = {});

} // namespace VpAgentTest
