#pragma once

#include "language/StartSettings.h"
#include "pelo/Integers.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace VpAgent {

/// What the program was asked to do on its command line.
struct Options {
    bool json = false;
    bool keepGoing = false;
    U64 traceLevels = 0;                  ///< bit L is set for level L
    StartSettings defaults;               ///< of `start`
    std::optional<std::string> stateFile; ///< where the database is kept; none: in memory
    std::vector<std::string> scripts; ///< in turn; `-` is standard input; none is the same as `-`
};

/// Exit status for a wrong option, an unreadable script or a failed command.
inline constexpr int failureStatus = 2;

/// Reads the command line. When there is nothing to run (`--help`, `--version`, a wrong option) it
/// has said so, and gives the exit status.
std::variant<Options, int> readOptions(int argc, char const* const* argv);

/// The mask of a list of trace levels, `1,5,7`, or of `all`; nothing when it is neither.
std::optional<U64> parseTraceLevels(std::string_view text);

} // namespace VpAgent
